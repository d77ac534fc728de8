"""The commands of the program beyond pull: on a machine under Wine they do what they do on Linux.

    program_test.py NATIVE_BIN WINDOWS_BIN
"""

import json
import re
import subprocess
import sys
import tempfile
from pathlib import Path

import wine


def main():
    native_bin, windows_bin = map(Path, sys.argv[1:])
    with tempfile.TemporaryDirectory() as scratch:
        machine = wine.install_machine(native_bin, windows_bin, scratch).parent
        scratch = Path(scratch)

        def native(*arguments):
            return subprocess.run([native_bin / "parvex", "--machine", machine, *arguments], capture_output=True)

        def windows(*arguments, check=True):
            return wine.run(windows_bin / "parvex.exe", *arguments, check=check)

        healthy = json.loads(windows("doctor", "--json").stdout)
        checks = {check["name"]: check["state"] for check in healthy["checks"]}
        expect(healthy["failures"] == 0 and checks["router"] == checks["builder"] == "ok", f"doctor: {healthy}")

        project = ("export", "--project", "Riverside Clinic", "-o")
        native(*project, scratch / "linux.xml")
        windows(*project, wine.windows_path(scratch / "windows.xml"))
        shown = [native("show", scratch / name).stdout for name in ("linux.xml", "windows.xml")]
        # Wine's XML component lays out the markup of an order configuration anew, which makes it longer.
        alike = [re.sub(rb"order configuration: \d+ characters", b"", text) for text in shown]
        expect(alike[0] and alike[0] == alike[1], f"export: {shown}")
        shown_there = windows("show", wine.windows_path(scratch / "windows.xml")).stdout
        expect(shown_there == shown[1], f"show: {shown_there}")

        blob = Path("Temp", "QPblob.tmp")
        native("return", scratch / "linux.xml", "--tag", "1")
        windows("return", wine.windows_path(scratch / "windows.xml"), "--tag", "1")
        returned = [(folder / wine.APPLICATION / blob).read_bytes() for folder in (machine / "drive_c", wine.drive_c())]
        expect(returned[0] and returned[0] == returned[1], "return: the selection files differ")

        refused = windows("--machine", wine.windows_path(machine), "doctor", check=False)
        expect(refused.returncode == 2 and b"the machine is this one" in refused.stderr, f"--machine: {refused}")
    print("ok: doctor, export, show, return; a machine folder is refused")


def expect(condition, message):
    if not condition:
        sys.exit(f"FAILED: {message}")


main()
