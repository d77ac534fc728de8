"""The installer under Wine: what it installs works, and it is removed without a trace.

    installer_test.py MSI NATIVE_BIN WINDOWS_BIN

Parvex is not registered by other means while this runs, and is again afterwards.
"""

import difflib
import re
import subprocess
import sys
import tempfile
from pathlib import Path

import wine

SCRIPT = """
Set encoder = CreateObject("Parvex.cBinEncoder")
If encoder.Encode("Man") <> "TWFu" Then WScript.Quit 1
Set pull = CreateObject("Parvex.LegacyORLAPull")
command = "<COMMAND><NAME>noSuchCommand</NAME></COMMAND>"
If InStr(pull.PullNGORLA(command), "Unrecognized or Failed Command") = 0 Then WScript.Quit 1
WScript.Echo "PASS"
"""


def classes():
    """All registered classes and type libraries, but for the installer's own notes of what it has installed."""
    with tempfile.NamedTemporaryFile(suffix=".reg", dir=wine.prefix()) as exported:
        wine.run("reg", "export", "HKCR", wine.windows_path(exported.name), "/y")
        sections = Path(exported.name).read_bytes().decode("utf-16").split("\r\n\r\n")
    return [section for section in sections if not section.startswith("[HKEY_CLASSES_ROOT\\Installer")]


def program_files():
    return sorted(str(path) for path in (wine.drive_c() / "Program Files").rglob("*"))


def run_script(scratch):
    script = Path(scratch) / "use.vbs"
    script.write_text(SCRIPT)
    return wine.run("cscript", "/nologo", wine.windows_path(script), check=False).stdout.decode()


def difference(before, after):
    lines = difflib.unified_diff("\n".join(before).splitlines(), "\n".join(after).splitlines(), lineterm="", n=0)
    return "\n".join(lines)[:4000]


def check(condition, message, seen=""):
    if not condition:
        sys.exit(f"FAILED: {message}\n{seen}")
    print(f"ok: {message}")


def main():
    msi, native_bin, windows_bin = sys.argv[1:]
    dll = Path(windows_bin) / "Parvex.dll"
    wine.register(dll, "/u")
    try:
        with tempfile.TemporaryDirectory() as scratch:
            before = classes(), program_files()
            check("PASS" not in run_script(scratch), "nothing is there before the installation")

            wine.run("msiexec", "/i", wine.windows_path(msi), "/qn")
            installed = wine.drive_c() / "Program Files" / "Parvex"
            names = {path.name for path in installed.iterdir()}
            check(names == {"Parvex.dll", "Parvex.tlb", "Parvex.manifest", "parvex.exe", "LICENSE.txt"},
                  "the files are installed")
            check("PASS" in run_script(scratch), "a script creates and uses the installed classes")
            machine = subprocess.run([Path(native_bin) / "parvex", "commands"], capture_output=True).stdout
            program = wine.run(installed / "parvex.exe", "commands").stdout.replace(b"\r\n", b"\n")
            check(program == machine, "the installed program runs")
            after_installing = classes()

            wine.run("msiexec", "/x", wine.windows_path(msi), "/qn")
            removed = classes()
            check(removed == before[0], "the registry is as it was", difference(before[0], removed))
            check(program_files() == before[1], "the program folder is as it was")

            wine.register(dll)
            registered = classes()
            check(len(of_parvex(registered)) > 40, "the classes are found in the registry", of_parvex(registered))
            check(of_parvex(after_installing) == of_parvex(registered),
                  "the installer registers the classes as the DLL does itself",
                  difference(of_parvex(registered), of_parvex(after_installing)))
    finally:
        wine.register(dll)


def of_parvex(sections):
    """The keys of the classes, with the paths of files made equal. (Type libraries are registered by the system, which
    notes more than it needs.)"""
    names = re.compile(r"\[HKEY_CLASSES_ROOT\\Parvex\.\w+\\CLSID\]")
    ids = {section.split('"')[1] for section in sections if names.match(section)}
    found = []
    for section in sections:
        key = section.splitlines()[0] if section else ""
        if key.startswith("[HKEY_CLASSES_ROOT\\Parvex.") or any(f"\\CLSID\\{id}" in key for id in ids):
            found.append(re.sub(r'="[A-Z]:\\\\[^"]*"', '="path"', section))
    return sorted(found)


main()
