"""The samples that can be run here, run against the registered Parvex.dll.

    samples_test.py SAMPLES CPP_SAMPLE NATIVE_BIN WINDOWS_BIN
"""

import sys
import tempfile
from pathlib import Path

import wine

WANTED = ["Project: Riverside Clinic", "Tags in the quote: 6", "Base64 of Man: TWFu",
          "Unrecognized or Failed Command", "from Parvex"]


def main():
    samples, program, native_bin, windows_bin = map(Path, sys.argv[1:])
    with tempfile.TemporaryDirectory() as scratch:
        wine.install_machine(native_bin, windows_bin, scratch)
    runs = {"quote.vbs": ["cscript", "/nologo", wine.windows_path(samples / "quote.vbs")],
            "quote.cpp": [program]}
    for name, command in runs.items():
        written = wine.run(*command, "Riverside Clinic").stdout.decode("utf-8", "replace")
        missing = [text for text in WANTED if text not in written]
        if missing:
            sys.exit(f"FAILED: {name} does not write {missing}:\n{written}")
        print(f"ok: {name}\n{written}")


main()
