"""Programs of the Windows build, run under Wine in the prefix that WINEPREFIX names."""

import os
import shutil
import subprocess
import sys
from pathlib import Path

TIME_LIMIT = 120
APPLICATION = Path("Korvane", "TQ5-VX")  # where the legacy application is installed on drive C


def prefix():
    return Path(os.environ["WINEPREFIX"])


def drive_c():
    return prefix() / "drive_c"


def windows_path(path):
    return "Z:" + str(Path(path).resolve()).replace("/", "\\")


def environment():
    return dict(os.environ, WINEDEBUG="-all", WINEDLLOVERRIDES="mscoree,mshtml=")


def start(*command):
    """Starts a program that the caller ends; nobody reads what it writes."""
    return subprocess.Popen(["wine", *map(str, command)], stdin=subprocess.DEVNULL, stdout=subprocess.DEVNULL,
                            stderr=subprocess.DEVNULL, env=environment())


def run(*command, check=True, timeout=TIME_LIMIT, **more):
    """Runs a program to its end. Its whole session is ended when it takes too long: a crash waits for a debugger."""
    done = subprocess.run(["timeout", "-k", "2", str(timeout), "wine", *map(str, command)], stdin=subprocess.DEVNULL,
                          capture_output=True, env=environment(), **more)
    if check and done.returncode != 0:
        sys.exit(f"{command} ended with {done.returncode}\n{done.stdout.decode(errors='replace')}"
                 f"{done.stderr.decode(errors='replace')}")
    return done


def register(dll, *switches):
    run("regsvr32", "/s", *switches, windows_path(dll))


def install_machine(native_bin, windows_bin, scratch):
    """A new sample machine on drive C; gives back its folder of command documents."""
    machine = Path(scratch) / "machine"
    subprocess.run([Path(native_bin) / "parvex", "machine", "create", machine], check=True)
    installed = drive_c() / APPLICATION
    shutil.rmtree(installed, ignore_errors=True)
    shutil.copytree(machine / "drive_c" / APPLICATION, installed)
    shutil.copy(Path(windows_bin) / "kdwfm470.exe", installed / "Bin" / "kdwfm470.exe")
    run("regedit", "/S", windows_path(machine / "registry.reg"))
    return machine / "commands"
