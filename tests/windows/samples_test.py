"""The samples that can be run here, run against the registered Parvex.dll.

    samples_test.py SAMPLES CPP_SAMPLE LATE_BOUND_CPP_SAMPLE NATIVE_BIN WINDOWS_BIN
"""

import sys
import tempfile
from pathlib import Path

import wine

WANTED = ["Project: Riverside Clinic", "Tags in the quote: 6", "Base64 of Man: TWFu",
          "Failed reply: -1", "Unrecognized or Failed Command", "the command document has no COMMAND/NAME"]
# How each language shows 0x800A005B, and who raised it where it says so.
FAILED_CALL = {"quote.vbs": "Failed call: 5B from Parvex", "quote.js": "Failed call: 800A005B:",
               "quote.cpp": "Failed call: 800A005B from Parvex",
               "quote_late_bound.cpp": "Failed call: 800A005B from Parvex"}


def main():
    samples, program, late_bound_program, native_bin, windows_bin = map(Path, sys.argv[1:])
    with tempfile.TemporaryDirectory() as scratch:
        wine.install_machine(native_bin, windows_bin, scratch)
    runs = {script: ["cscript", "/nologo", wine.windows_path(samples / script)] for script in ("quote.vbs", "quote.js")}
    runs |= {"quote.cpp": [program], "quote_late_bound.cpp": [late_bound_program]}
    for name, command in runs.items():
        written = wine.run(*command, "Riverside Clinic").stdout.decode("utf-8", "replace")
        missing = [text for text in [*WANTED, FAILED_CALL[name]] if text not in written]
        if missing:
            sys.exit(f"FAILED: {name} does not write {missing}:\n{written}")
        print(f"ok: {name}\n{written}")


main()
