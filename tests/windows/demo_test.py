"""The whole demo under Wine: the program exports the sample project, and the quote is the one that Linux gives.

    demo_test.py NATIVE_BIN WINDOWS_BIN SUMMARISE
"""

import subprocess
import sys
import tempfile
from pathlib import Path

import wine


def summary(summarise, quote, scratch):
    path = Path(scratch) / "quote.xml"
    path.write_bytes(quote)
    return subprocess.run([sys.executable, summarise, path], capture_output=True, text=True, check=True).stdout


def main():
    native_bin, windows_bin, summarise = sys.argv[1:]
    with tempfile.TemporaryDirectory() as scratch:
        commands = wine.install_machine(native_bin, windows_bin, scratch)
        command = commands / "getHybrisXMLNoUI.xml"
        journal = Path(scratch) / "journal.jsonl"
        windows = wine.run(Path(windows_bin) / "parvex.exe", "--journal", wine.windows_path(journal), "pull-ngorla",
                           wine.windows_path(command)).stdout
        machine = commands.parent
        native = subprocess.run([Path(native_bin) / "parvex", "--machine", machine, "pull-ngorla", command],
                                capture_output=True, check=True).stdout
        told = [summary(summarise, quote, scratch) for quote in (windows, native)]
        print(told[0])
        if told[0] != told[1] or '"process' not in journal.read_text():
            sys.exit(f"FAILED: on Linux the summary is\n{told[1]}\nand the journal under Wine\n{journal.read_text()}")


main()
