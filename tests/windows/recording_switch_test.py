"""The program switches recording on and off for the user, and a host with Parvex.dll goes by that. Hosts of both
bitnesses read the same key: no bitness has a user's key of its own.

    recording_switch_test.py NATIVE_BIN WINDOWS_BIN
"""

import sys
import tempfile
from pathlib import Path

import wine

KEY = r"HKEY_CURRENT_USER\SOFTWARE\Parvex\Recording"
OFF = "Recording is off.\n"
HOST = """Set pull = CreateObject("Parvex.LegacyORLAPull")
pull.PullNGORLA "<COMMAND><NAME>noSuchCommand</NAME></COMMAND>"
"""


def main():
    native_bin, windows_bin = map(Path, sys.argv[1:])

    def recording(*words):
        return wine.run(windows_bin / "parvex.exe", "recording", *words).stdout.decode().replace("\r\n", "\n")

    with tempfile.TemporaryDirectory() as scratch:
        wine.install_machine(native_bin, windows_bin, scratch)
        script = Path(scratch) / "host.vbs"
        script.write_text(HOST)
        folder = Path(scratch) / "cases"
        named = wine.windows_path(scratch) + "\\cases"

        def recorded_calls():
            wine.run("cscript", "/nologo", wine.windows_path(script))
            return len(list(folder.iterdir())) if folder.exists() else 0

        try:
            expect(recording("status"), OFF)
            expect(recorded_calls(), 0)
            on = recording("on", named)
            expect(on, f"Recording is on, into {named} ({KEY}).\nUp to 50 cases and 200 MB are kept.\n")
            expect(recording("status"), on)
            for view in ("/reg:32", "/reg:64"):
                value = wine.run("reg", "query", KEY, "/v", "Folder", view).stdout.decode(errors="replace")
                expect(named in value, True)
            expect(recorded_calls(), 1)
            expect(recording("off"), OFF)
            expect(recording("status"), OFF)
            expect(recorded_calls(), 1)
            for view in ("/reg:32", "/reg:64"):
                wine.run("reg", "add", KEY, "/v", "Folder", "/d", named, "/f", view)
                expect(recording("status"), on)
                expect(recording("off"), OFF)
            expect("\\AppData\\Local\\Parvex\\Recordings (" in recording("on"), True)
        finally:
            wine.run("reg", "delete", KEY, "/f", check=False)
    print("ok: recording is switched on and off by the user's key, whatever the bitness")


def expect(actual, expected):
    if actual != expected:
        sys.exit(f"FAILED: {actual!r} instead of {expected!r}")


main()
