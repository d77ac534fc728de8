"""What the doctor finds on a machine under Wine, line by line; the commands of its cures run; its report has no names.

    doctor_test.py NATIVE_BIN WINDOWS_BIN
"""

import json
import re
import shutil
import sys
import tempfile
from pathlib import Path

import wine

HOST = r"[A-Z]:\\\S+\\"
VERSION = r"\d+\.\d+\.\d+\.\d+"
ROOT = r"C:\\Korvane\\TQ5-VX"
IDS = r"class \{196AAAC4-[-0-9A-F]+\}, interface \{E3B59D45-[-0-9A-F]+\}, from this build; they are the substitute's"
SUBSTITUTE = HOST + r"KorvaneSubstitute\.dll " + VERSION


def lines_of(bits):
    """State, name and what was found, of each line."""
    yield "ok", "version", r"parvex \d+\.\d+\.\d+"
    yield "ok", "bitness", f"{bits}-bit Windows program"
    yield "ok", "XML parser", rf"MSXML 3 {VERSION} \(C:\\windows\\system32\\msxml3\.dll\)"
    yield "ok", "code page", r"\d+"
    yield "ok", "recording", "off"
    yield "ok", "registry value", ROOT + r"\\Bin\\"
    yield "ok", "program folder", ROOT + r"\\Bin"
    yield "ok", "temporary folder", ROOT + r"\\Temp"
    yield "ok", "hand-over folder", ROOT + r"\\Temp"
    yield "ok", "hand-over lock", "nobody holds the hand-over files"
    yield "ok", "projects", ROOT + r"\\Projects"
    yield "ok", "archives", ROOT + r"\\Archives"
    for name in ("kdwfm470.exe", "UIKeys.txt", "Options.xml", "Tools.xml", "TagUpdateInfo.xml", "KDCustomRpt_Cfg.xml"):
        yield "ok", name, ROOT + r"\\Bin\\" + re.escape(name)
    yield "warning", "router identifiers", IDS
    yield "ok", "router", r"answers getProjectList; " + SUBSTITUTE
    yield "ok", "builder", r"KDQU470\.CKDBuilder: " + SUBSTITUTE
    yield "ok", "report server", r"KDRPTSV47\.CRemoteInterface: " + SUBSTITUTE
    yield "ok", "database engine", (rf"DAO\.DBEngine\.(36|120) {VERSION} \({HOST}SubstituteEngine\.dll\) reads "
                                    + ROOT + r"\\Projects\\Riverside Clinic\\project\.mdb")


def bits_of(program):
    content = program.read_bytes()
    header = int.from_bytes(content[0x3C:0x40], "little")
    return {b"\x64\x86": 64, b"\x4C\x01": 32}[content[header + 4:header + 6]]


def expect(condition, message):
    if not condition:
        sys.exit(f"FAILED: {message}")


def main():
    native_bin, windows_bin = map(Path, sys.argv[1:])
    program = windows_bin / "parvex.exe"
    installed = wine.drive_c() / wine.APPLICATION
    with tempfile.TemporaryDirectory() as scratch:
        wine.install_machine(native_bin, windows_bin, scratch)

        def doctor(*arguments):
            return wine.run(program, "doctor", *arguments, check=False).stdout.decode().replace("\r\n", "\n")

        def check_named(name):
            return next(check for check in json.loads(doctor("--json"))["checks"] if check["name"] == name)

        def typed(command):
            script = Path(scratch) / "typed.bat"
            script.write_text(command + "\n", newline="\r\n")
            return wine.run("cmd", "/c", wine.windows_path(script), check=False)

        told = doctor()
        found = [line for line in told.split("\n\n")[0].splitlines() if not line.startswith(" ")]
        wanted = list(lines_of(bits_of(program)))
        expect(len(found) == len(wanted), f"{len(wanted)} lines are wanted of {told}")
        for line, (state, name, detail) in zip(found, wanted):
            expect(re.fullmatch(f"{state:<11}{re.escape(f'{name:<21}')}{detail}", line), f"{state} {name} {detail}: {line}")

        for check, state, damage in (
                ("archives", "failure", lambda: shutil.rmtree(installed / "Archives")),
                ("temporary folder", "failure", lambda: (installed / "Temp" / "parvex-doctor.tmp").mkdir()),
                ("router identifiers", "warning",
                 lambda: shutil.copy(windows_bin / "KorvaneSubstitute.dll", installed / "Bin" / "Router.dll"))):
            damage()
            ill = check_named(check)
            expect(ill["state"] == state and ill["command"], f"{check}: {ill}")
            done = typed(ill["command"])
            # The substitute's ids stay a warning, wherever they come from.
            well = check_named(check)
            healed = well["state"] == "ok" or "from HKEY_CURRENT_USER" in well["detail"]
            expect(healed, f"{ill['command']} does not heal {check}: {done.stdout} {well}")

        shutil.copy(windows_bin / "Parvex.dll", installed / "Bin" / "kdwfm470.exe")
        ill = check_named("kdwfm470.exe")
        expect(ill["state"] == "failure" and ill["detail"].endswith(" is a DLL, and no program"), ill)

        profile = wine.run("cmd", "/c", "echo %USERPROFILE%").stdout.decode().strip()
        wine.run(program, "recording", "on", profile + r"\Plantagenet")
        (installed / "Projects" / "Riverside Clinic").rename(installed / "Projects" / "Plantagenet Clinic")
        report = doctor("--report")
        expect("Plantagenet" not in report and profile not in report, report)
        expect(r"on, into %USERPROFILE%\..." in report and r"\Projects\...\project.mdb" in report, report)
    print("ok")


def clean():
    for key in ("Recording", "Router"):
        wine.run("reg", "delete", rf"HKCU\Software\Parvex\{key}", "/f", check=False)


try:
    main()
finally:
    clean()
