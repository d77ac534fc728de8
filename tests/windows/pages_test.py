"""What the pages for Windows let their readers type, typed as it stands into a command prompt under Wine.

    pages_test.py MSI NATIVE_BIN WINDOWS_BIN

The prefix is a fresh one, which this makes a machine. Each page's commands are typed in their order, by one prompt, with
the rows of ADAPTED in place of what this machine has not. A page that is not in PAGES shows no such commands
(tests/docs/every_command_test.py).
"""

import re
import shutil
import subprocess
import sys
import tempfile
from pathlib import Path

import wine
from prepare import prepare

PAGES = ("docs/how-to/install-on-windows.md", "docs/how-to/record-and-replay.md", "docs/how-to/find-the-routers-ids.md")
SOURCES = Path(__file__).parents[2]
COMMAND = re.compile(r"^ {4,}((?:> )?(?:msiexec|regsvr32|explorer|echo|parvex|%\w|\"%).*?)(?: {3,}\S.*)?$", re.MULTILINE)
IDS = ("{196AAAC4-3B30-44CD-BF13-4C212B3BCD3D}", "{E3B59D45-E9F2-4852-95E0-C034FE2B0A22}")


def adapted(command, msi):
    """The command as this machine can carry it out: nobody answers a window, and the prefix has one bitness."""
    command = command.removeprefix("> ")
    command = re.sub(r"parvex-[\d.]+-x(86|64)\.msi", Path(msi).name, command)
    command = command.replace("SysWOW64", "System32").replace("%ProgramFiles(x86)%", "%ProgramFiles%")
    command = command.replace("C:\\Korvane\\TQ5-VX\\Bin\\Router.dll", "C:\\Place\\Router.dll")
    command = command.replace("explorer ", "dir /b ")
    command = command.replace("ROUTER_CLSID={...} ROUTER_IID={...}", f"ROUTER_CLSID={IDS[0]} ROUTER_IID={IDS[1]}")
    if command.startswith("msiexec"):
        command += " /qn"
    if "regsvr32" in command:
        command = command.replace("regsvr32", "regsvr32 /s", 1)
    return command


def commands_of(page):
    return COMMAND.findall((SOURCES / page).read_text(encoding="utf-8"))


def type_in(folder, commands):
    """Exit status and output of each command, typed into one new prompt."""
    lines = ["@echo off"]
    for command in commands:
        lines += [command, "echo [status %errorlevel%]"]
    (folder / "typed.bat").write_text("".join(f"{line}\n" for line in lines), newline="\r\n")
    printed = wine.run("cmd", "/c", "typed.bat", cwd=folder, timeout=600).stdout.decode("utf-8", "replace").replace("\r", "")
    parts = re.split(r"\[status (-?\d+)\]\n", printed)
    return [(int(status), text) for text, status in zip(parts[::2], parts[1::2])]


def check(condition, message, seen=""):
    if not condition:
        sys.exit(f"FAILED: {message}\n{seen}")
    print(f"ok: {message}")


def carry_out(page, folder, msi, between=None):
    """Types all commands of a page, each of which has to end with 0. `between` maps a word of a command to commands that
    somebody types behind it."""
    commands = []
    for shown in commands_of(page):
        commands.append(adapted(shown, msi))
        commands += [more for word, more in (between or {}).items() if word in shown]
    check(commands, f"{page} shows commands")
    done = type_in(folder, commands)
    check(len(done) == len(commands), f"{page}: all were typed", done)
    for command, (status, text) in zip(commands, done):
        check(status == 0, f"{page}: {command}", f"status {status}\n{text}")
    return {command: text for command, (_, text) in zip(commands, done)}


def main():
    msi, native_bin, windows_bin = sys.argv[1:]
    prepare(Path(native_bin), Path(windows_bin))
    wine.register(Path(windows_bin) / "Parvex.dll", "/u")
    place = wine.drive_c() / "Place"
    place.mkdir()
    for name in ("Parvex.dll", "Parvex.tlb"):
        if (Path(windows_bin) / name).exists():
            shutil.copy(Path(windows_bin) / name, place)
    shutil.copy(Path(windows_bin) / "KorvaneSubstitute.dll", place / "Router.dll")
    with tempfile.TemporaryDirectory(dir=wine.drive_c()) as scratch:
        folder = Path(scratch)
        shutil.copy(msi, folder)
        install, record, ids = PAGES

        # The page's ways to install are typed one after the other, and its "Afterwards" behind the last.
        printed = carry_out(install, folder, msi, {"ADDTOPATH": "set PATH=%PATH%;%ProgramFiles%\\Parvex"})
        seen = "\n".join(printed.values())
        for wanted in ("parvex 0.", "checks", "<NAME>Riverside Clinic</NAME>", "TWFu"):
            check(wanted in seen, f"{install}: the last commands print {wanted}", seen)

        printed = carry_out(record, folder, msi,
                            {"recording on": "\"%ProgramFiles%\\Parvex\\parvex.exe\" pull list.xml"})
        cases = next(text for command, text in printed.items() if command.startswith("dir /b"))
        check(re.fullmatch(r"\S+-getProjectList\.pvxcase\n", cases), f"{record}: the folder holds the case", cases)
        check("Recording is off." in "\n".join(printed.values()), f"{record}: recording is off again")

        printed = carry_out(ids, folder, msi)
        check("saved in HKEY_LOCAL_MACHINE" in "\n".join(printed.values()), f"{ids}: the ids are saved")


main()
