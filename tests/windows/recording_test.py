"""Calls are recorded on Windows: through Parvex.dll in a host of its own, and by the program. Support reads the cases on
Linux. Two hosts may record into one folder.

    recording_test.py NATIVE_BIN WINDOWS_BIN
"""

import json
import os
import shutil
import subprocess
import sys
import tempfile
from concurrent.futures import ThreadPoolExecutor
from pathlib import Path

import recordings
import wine

HOST = """Set pull = CreateObject("Parvex.LegacyORLAPull")
Set file = CreateObject("Scripting.FileSystemObject").OpenTextFile(WScript.Arguments(0))
If Len(pull.PullNGORLA(file.ReadAll)) > 0 Then WScript.Echo "reply"
On Error Resume Next
pull.PullNGORLA "no command at all"
WScript.Echo Err.Number And &HFFFF&
"""


def main():
    native_bin, windows_bin = map(Path, sys.argv[1:])
    with tempfile.TemporaryDirectory() as scratch:
        scratch = Path(scratch)
        commands = wine.install_machine(native_bin, windows_bin, scratch)
        (scratch / "host.vbs").write_text(HOST)
        cases = scratch / "cases"
        cases.mkdir()

        def native(*arguments):
            return subprocess.run([native_bin / "parvex", *arguments], capture_output=True, check=True).stdout

        def host():
            said = wine.run("cscript", "/nologo", wine.windows_path(scratch / "host.vbs"),
                            wine.windows_path(commands / "getHybrisXMLNoUI.xml"))
            expect(said.stdout.split() == [b"reply", b"91"], f"the host: {said}")

        host()
        expect(not any(cases.iterdir()), "nothing is recorded before it is switched on")
        os.environ["PARVEX_RECORD"] = wine.windows_path(cases)
        host()
        del os.environ["PARVEX_RECORD"]
        host()
        wine.run(windows_bin / "parvex.exe", "--record", wine.windows_path(cases), "pull",
                 wine.windows_path(commands / "getOptions.xml"))

        names = sorted(path.name for path in cases.iterdir())
        expect(len(names) == 3 and all(name.endswith(".pvxcase") for name in names), f"cases: {names}")
        shown = {name: json.loads(native("case", "show", "--json", cases / name)) for name in names}
        expect({case["platform"] for case in shown.values()} == {"Windows"}, f"platform: {shown}")
        by_command = {name.removesuffix(".pvxcase").split("-")[-1]: case for name, case in shown.items()}
        export, refused, options = (by_command[name] for name in ("getHybrisXMLNoUI", "unknown", "getOptions"))
        expect(export["outcome"] == "reply" and export["missing"] == [], f"the export: {export}")
        expect(export["program"].lower().endswith("cscript.exe"), f"the host's name: {export}")
        expect(refused["outcome"] == "error" and refused["error"]["number"] == "0x800A005B", f"the refusal: {refused}")
        expect(options["program"].lower().endswith("parvex.exe"), f"the program's name: {options}")

        steps = [(step.get("kind"), step.get("op")) for step in export["steps"]]
        expect(("process", "start") in steps and ("process", "end") in steps, f"steps: {steps}")
        [name] = [name for name in names if name.endswith("-getHybrisXMLNoUI.pvxcase")]
        native("case", "extract", cases / name, scratch / "native")
        wine.run(windows_bin / "parvex.exe", "case", "extract", wine.windows_path(cases / name),
                 wine.windows_path(scratch / "windows"))
        extracted = [contents(scratch / where) for where in ("native", "windows")]
        expect(extracted[0] == extracted[1], "both programs extract the same")
        kept = {str(path).lower() for path in extracted[0]}
        expect({"command.xml", "reply.xml", "machine/registry.reg"} <= kept, f"members: {sorted(kept)}")
        expect(any(path.startswith("after/") and path.endswith("qboutput.ini") for path in kept),
               f"what the workflow program left: {sorted(kept)}")
        full_disk(native_bin, scratch, host)
        two_hosts(native_bin, scratch)
    print("ok: calls of two hosts and of the program are recorded on Windows, and read on Linux")


def full_disk(native_bin, scratch, host):
    """No call is another one because its recording has no room; what there is of the case can be read."""
    cases = scratch / "full"
    os.environ["PARVEX_RECORD"] = wine.windows_path(cases)
    try:
        for left in (0, 2, 8):
            with recordings.FullDisk(cases, pages_left=left):
                host()
                listed = subprocess.run([native_bin / "parvex", "case", "list", cases], capture_output=True)
                names = [path.name for path in cases.iterdir() if path.name != recordings.FILLER]
                expect(listed.returncode == 0 and listed.stdout.count(b"\n") == len(names),
                       f"a full disk with {left} pages left: {names}, {listed}")
    except OSError as reason:
        print(f"not tried: a full disk ({reason})")
    finally:
        del os.environ["PARVEX_RECORD"]


SETTINGS = r"HKCU\Software\Parvex\Recording"


def two_hosts(native_bin, scratch, calls=25, keep=3):
    """Both record into one folder that keeps few cases: each call is answered, and every case that stays is whole."""
    cases = scratch / "shared"
    hosts = []
    for name in ("first", "second"):
        # Each has files of its own: a script host opens a file for itself alone.
        own = scratch / name
        own.mkdir()
        shutil.copy(recordings.HOST, own / "host.vbs")
        (own / "command.xml").write_text("<COMMAND><NAME>getOptions</NAME></COMMAND>", encoding="utf-16")
        hosts.append(["cscript", "/nologo", wine.windows_path(own / "host.vbs")]
                     + ["Pull", wine.windows_path(own / "command.xml")] * calls)
    os.environ["PARVEX_RECORD"] = wine.windows_path(cases)
    wine.run("reg", "add", SETTINGS, "/v", "Keep", "/d", str(keep), "/f")
    try:
        with ThreadPoolExecutor() as pool:
            said = [done.stdout.split() for done in pool.map(lambda command: wine.run(*command), hosts)]
    finally:
        wine.run("reg", "delete", SETTINGS, "/f")
        del os.environ["PARVEX_RECORD"]
    expect(said == [[b"reply"] * calls] * 2, f"two hosts: {said}")
    left = sorted(path.name for path in cases.iterdir())
    expect(0 < len(left) <= keep and all(name.endswith(".pvxcase") for name in left), f"kept of two hosts: {left}")
    for name in left:
        shown = json.loads(subprocess.run([native_bin / "parvex", "case", "show", "--json", cases / name],
                                          capture_output=True, check=True).stdout)
        expect(shown["outcome"] == "reply" and shown["missing"] == [], f"a case of two hosts: {shown}")


def contents(folder):
    return {path.relative_to(folder): path.read_bytes() for path in folder.rglob("*") if path.is_file()}


def expect(condition, message):
    if not condition:
        sys.exit(f"FAILED: {message}")


main()
