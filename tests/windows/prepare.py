"""Makes a Wine prefix ready for the tests: a sample machine on drive C, and everything registered that they use.

    prepare.py NATIVE_BIN WINDOWS_BIN

The prefix (WINEPREFIX) is made when it is not there.
"""

import shutil
import subprocess
import sys
import tempfile
from pathlib import Path

import wine


def prepare(native_bin, windows_bin):
    # Started first and kept, or the first program whose output is read waits for the services for ever.
    subprocess.run(["wineserver", "-p"])  # refuses when one runs already
    subprocess.run(["wine", "cmd", "/c", "exit"], stdin=subprocess.DEVNULL, stdout=subprocess.DEVNULL,
                   stderr=subprocess.DEVNULL, check=True, timeout=300)
    # Windows and boxes without a display, and no debugger at a crash.
    wine.run("reg", "add", r"HKCU\Software\Wine\Drivers", "/v", "Graphics", "/d", "null", "/f")
    wine.run("reg", "add", r"HKLM\Software\Microsoft\Windows NT\CurrentVersion\AeDebug", "/v", "Auto", "/d", "0", "/f")
    # Wine starts surrogate processes from the folder of 32-bit programs, which a prefix of 64 bits alone does not have.
    surrogate = wine.drive_c() / "windows" / "syswow64" / "dllhost.exe"
    if not surrogate.exists():
        surrogate.parent.mkdir(exist_ok=True)
        shutil.copy(wine.drive_c() / "windows" / "system32" / "dllhost.exe", surrogate)
    with tempfile.TemporaryDirectory() as scratch:
        wine.install_machine(native_bin, windows_bin, scratch)
    for dll in ("KorvaneSubstitute.dll", "SubstituteEngine.dll", "Parvex.dll"):
        wine.register(windows_bin / dll)


if __name__ == "__main__":
    prepare(*map(Path, sys.argv[1:]))
