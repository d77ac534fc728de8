"""Calls are recorded on Windows: through Parvex.dll in a host of its own, and by the program. Support reads the cases on
Linux.

    recording_test.py NATIVE_BIN WINDOWS_BIN
"""

import json
import os
import subprocess
import sys
import tempfile
from pathlib import Path

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
    print("ok: calls of a host and of the program are recorded on Windows, and read on Linux")


def contents(folder):
    return {path.relative_to(folder): path.read_bytes() for path in folder.rglob("*") if path.is_file()}


def expect(condition, message):
    if not condition:
        sys.exit(f"FAILED: {message}")


main()
