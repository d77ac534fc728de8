"""The installer under Wine: what it installs works, side by side with the one of the other bitness too, its properties do
what they say, and it is removed without a trace.

    installer_test.py MSI NATIVE_BIN WINDOWS_BIN

The prefix is a fresh one, which this makes a machine.
"""

import difflib
import re
import subprocess
import sys
import tempfile
from pathlib import Path

import wine
from prepare import prepare

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


def keep_keys_of_32_bit():
    """Wine removes a key of its own with the last key below it, and without these 32-bit classes become 64-bit ones."""
    for key in ("CLSID", "Interface"):
        wine.run("reg", "add", rf"HKLM\Software\Classes\Wow6432Node\{key}", "/v", "Stays", "/d", "yes", "/f")


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
    architecture = Path(msi).stem.rpartition("-")[2]
    if architecture == "x64":
        keep_keys_of_32_bit()
    prepare(Path(native_bin), Path(windows_bin))
    wine.register(Path(windows_bin) / "Parvex.dll", "/u")
    with tempfile.TemporaryDirectory() as scratch:
        # Some systems' script host registers a type library of its own when it first runs.
        check("PASS" not in run_script(scratch), "nothing is there before the installation")
        before = classes(), program_files()

        wine.run("msiexec", "/i", wine.windows_path(msi), "/qn")
        installed = wine.drive_c() / "Program Files" / "Parvex"
        names = {path.name for path in installed.iterdir()}
        wanted = {"Parvex.dll", "Parvex.tlb", "Parvex.Component.manifest", "parvex.exe", "LICENSE.txt"}
        if is_64_bit_windows():
            wanted.add(OTHER_PROGRAM[architecture])
        check(names == wanted, "the files are installed", names)
        check("PASS" in run_script(scratch), "a script creates and uses the installed classes")
        machine = subprocess.run([Path(native_bin) / "parvex", "commands"], capture_output=True).stdout
        program = wine.run(installed / "parvex.exe", "commands").stdout.replace(b"\r\n", b"\n")
        check(program == machine, "the installed program runs")
        check_both_bitnesses(installed, architecture)
        after_installing = classes()

        wine.run("msiexec", "/x", wine.windows_path(msi), "/qn")
        removed = classes()
        check(removed == before[0], "the registry is as it was", difference(before[0], removed))
        check(program_files() == before[1], "the program folder is as it was")

        check_properties(msi, before[0], scratch)
        check_search_path(msi)
        if architecture == "x64":  # a 32-bit Windows takes no installer of the other bitness
            check_side_by_side(msi, build(windows_bin, scratch, "0.1.0", "x86"), before[0], scratch)
        check_upgrade(Path(msi), build(windows_bin, scratch, "99.0.0", architecture), classes())

        wine.register(Path(windows_bin) / "Parvex.dll")
        registered = classes()
        check(len(of_parvex(registered)) > 40, "the classes are found in the registry", of_parvex(registered))
        check(of_parvex(after_installing) == of_parvex(registered),
              "the installer registers the classes as the DLL does itself",
              difference(of_parvex(registered), of_parvex(after_installing)))


OTHER_PROGRAM = {"x64": "parvex32.exe", "x86": "parvex64.exe"}
PROCESSORS = {"x64": b"\x64\x86", "x86": b"\x4C\x01"}


def is_64_bit_windows():
    return wine.run("cmd", "/c", "echo %PROCESSOR_ARCHITECTURE%").stdout.strip() != b"x86"


def processor_of(program):
    content = program.read_bytes()
    header = int.from_bytes(content[0x3C:0x40], "little")
    return content[header + 4:header + 6]


def check_both_bitnesses(installed, architecture):
    """The program of the other bitness lies beside, and the doctor says whom to ask. (It runs on a Windows only that runs
    programs of both.)"""
    check(processor_of(installed / "parvex.exe") == PROCESSORS[architecture], "the program has the installer's bitness")
    told = wine.run(installed / "parvex.exe", "doctor", check=False).stdout.decode()
    if not is_64_bit_windows():
        check("; for what" not in told, "the doctor sends nobody to a program that does not run", told)
        return
    other = installed / OTHER_PROGRAM[architecture]
    check(processor_of(other) == PROCESSORS["x86" if architecture == "x64" else "x64"], "the other has the other one")
    check(f"-bit hosts see, ask C:\\Program Files\\Parvex\\{other.name}" in told, "the doctor names it", told)


NOBODY = "{11111111-2222-3333-4444-555555555555}"
PACKAGING = Path(__file__).parents[2] / "packaging" / "windows"
DEFINITION = Path(__file__).parents[2] / "src" / "com" / "parvex.idl"


def build(windows_bin, scratch, version, architecture):
    """An installer of the same files, whose contents do not matter to what is looked at here."""
    folder = Path(scratch) / f"{version}-{architecture}"
    folder.mkdir()
    (folder / "bin").symlink_to(Path(windows_bin).resolve())
    for command in ([sys.executable, "-B", PACKAGING / "make_wxs.py", DEFINITION, version, architecture, "p.wxs", "p.c"],
                    ["wixl", "-a", architecture, "-D", "BIN=bin", "-o", "p.msi", "p.wxs"],
                    [sys.executable, "-B", PACKAGING / "finish_msi.py", "p.msi", "p.c"]):
        subprocess.run(command, cwd=folder, check=True)
    return folder / "p.msi"


def install(msi, *properties, check=True):
    return wine.run("msiexec", "/i", wine.windows_path(msi), "/qn", *properties, check=check)


def remove(msi):
    wine.run("msiexec", "/x", wine.windows_path(msi), "/qn")


def exported(key):
    """The text of a key with all below it; empty when there is none."""
    with tempfile.NamedTemporaryFile(suffix=".reg", dir=wine.prefix()) as file:
        if wine.run("reg", "export", key, wine.windows_path(file.name), "/y", check=False).returncode != 0:
            return ""
        return Path(file.name).read_bytes().decode("utf-16")


def check_properties(msi, before, scratch):
    refused = install(msi, f"ROUTER_CLSID={NOBODY}", check=False)
    check(refused.returncode != 0 and classes() == before, "half a pair of router ids installs nothing")
    install(msi, r"INSTALLDIR=C:\Elsewhere", f"ROUTER_CLSID={NOBODY}", f"ROUTER_IID={NOBODY}", "SURROGATE=1")
    check((wine.drive_c() / "Elsewhere" / "Parvex.dll").is_file(), "INSTALLDIR names the folder")
    check(exported(r"HKLM\Software\Parvex\Router").count(NOBODY) == 2, "the router ids are written",
          exported(r"HKLM\Software\Parvex"))
    check("PASS" not in run_script(scratch), "and are those that the component uses")
    text = "\n".join(classes())
    check('"DllSurrogate"=""' in text and text.count('"AppID"="{5C1C5A5E') == 6, "SURROGATE registers the application")
    remove(msi)
    check(classes() == before, "all of that is removed", difference(before, classes()))
    check(NOBODY not in exported(r"HKLM\Software\Parvex"), "the router ids too")


def search_path():
    text = exported(r"HKLM\System\CurrentControlSet\Control\Session Manager\Environment")
    bytes_ = re.search(r'"PATH"=hex\(2\):((?:[0-9a-f,]|\\\s+)*)', text, re.IGNORECASE)[1]
    return bytes.fromhex("".join(re.findall("[0-9a-f]{2}", bytes_))).decode("utf-16-le").rstrip("\0").rstrip(";")


def check_search_path(msi):
    before = search_path()
    install(msi)
    check(search_path() == before, "the search path is left alone unless asked for", search_path())
    remove(msi)
    install(msi, "ADDTOPATH=1")
    check(search_path() == before + ";C:\\Program Files\\Parvex\\", "ADDTOPATH adds the folder behind all others", search_path())
    named = wine.run("cmd", "/c", "parvex", "--version").stdout.decode()
    check(named.startswith("parvex "), "parvex is found by its name", named)
    known = r"HKLM\SOFTWARE\Microsoft\Windows\CurrentVersion\App Paths\parvex.exe"
    check("parvex.exe" in exported(known), "and is among the programs known by name")
    check_last_commands_of_the_page()
    # Wine leaves the separator behind.
    remove(msi)
    check(search_path() == before and not exported(known), "and all of that is removed", search_path())


def check_last_commands_of_the_page():
    """What "Afterwards" in the page about installing lets its reader type, typed as it stands in a new command prompt."""
    page = (Path(__file__).parents[2] / "docs" / "how-to" / "install-on-windows.md").read_text(encoding="utf-8")
    commands = re.findall("^    (.*)$", page.partition("## Afterwards")[2], re.MULTILINE)
    # The page tells both folders of cscript, and this prefix has one bitness.
    commands = [command.replace("SysWOW64", "System32") for command in commands]
    with tempfile.TemporaryDirectory(dir=wine.drive_c()) as folder:
        (Path(folder) / "typed.bat").write_text("".join(f"{command}\n" for command in commands), newline="\r\n")
        printed = wine.run("cmd", "/c", "typed.bat", cwd=folder, check=False).stdout.decode("utf-8", "replace")
    for wanted in ("\nparvex 0.", "checks", "<NAME>Riverside Clinic</NAME>", "\nTWFu"):
        check(wanted in printed.replace("\r", ""), f"the page's last commands print {wanted.strip()}", printed)


def check_side_by_side(msi, other, before, scratch):
    def values():
        # Wine removes other keys of its own that were empty before.
        return [section for section in classes() if "\r\n" in section.strip()]

    install(msi)
    alone = values()
    install(other)
    check("PASS" in run_script(scratch), "both bitnesses are installed")
    remove(other)
    check(values() == alone, "removing the other one leaves this one whole", difference(alone, values()))
    check("PASS" in run_script(scratch), "which works")
    install(other)
    both = values()
    remove(msi)
    left = values()

    def shared_in(sections):
        # As 32-bit programs see them: where they do not share them with 64-bit ones, they have them below a node.
        own = [section for section in sections if section.startswith("[HKEY_CLASSES_ROOT\\Wow6432Node\\Parvex.")]
        return own or [section for section in sections if section.startswith("[HKEY_CLASSES_ROOT\\Parvex.")]

    check(len(shared_in(left)) > 20 and shared_in(left) == shared_in(both),
          "removing this one leaves the programmatic ids to the other", difference(both, left))
    check(any("\\0\\win32]" in section and "TypeLib" in section and "Parvex.dll" in section for section in left),
          "and its type library")
    remove(other)
    before = [section for section in before if "\r\n" in section.strip()]
    check(values() == before, "nothing is left behind the last one", difference(before, values()))


def check_upgrade(msi, later, before):
    def versions():
        text = exported(r"HKLM\Software\Microsoft\Windows\CurrentVersion\Uninstall")
        return [re.search(r'"DisplayVersion"="(.*)"', section)[1] for section in text.split("\r\n\r\n")
                if '"DisplayName"="Parvex' in section]

    install(msi)
    install(later)
    check(versions() == ["99.0.0"], "a later version replaces the earlier one", versions())
    refused = install(msi, check=False)
    check(refused.returncode != 0 and versions() == ["99.0.0"], "an earlier one is refused", versions())
    check(b"A newer version of Parvex is installed." in msi.read_bytes(), "by a sentence")
    remove(later)
    check(classes() == before, "and nothing is left", difference(before, classes()))


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
