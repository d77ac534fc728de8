"""A journal that was written on Windows answers the same commands on Linux, though other programs wrote its markup.

    journal_test.py NATIVE_BIN WINDOWS_BIN
"""

import json
import subprocess
import sys
import tempfile
from pathlib import Path
from xml.etree import ElementTree

import wine

COMMANDS = ["project-03-list", "tag-01-list", "tag-02-fetch", "tag-03-rename", "tag-04-copy", "tag-05-delete"]


def main():
    native_bin, windows_bin = map(Path, sys.argv[1:])
    with tempfile.TemporaryDirectory() as scratch:
        commands = wine.install_machine(native_bin, windows_bin, scratch)
        files = [commands / f"{name}.xml" for name in COMMANDS]
        journal = Path(scratch) / "journal.jsonl"
        windows = wine.run(windows_bin / "parvex.exe", "--journal", wine.windows_path(journal), "pull",
                           *map(wine.windows_path, files))

        def replay(lines):
            replayed = Path(scratch) / "replayed.jsonl"
            replayed.write_text("\n".join(lines), "utf-8")
            return subprocess.run([native_bin / "parvex", "--machine", commands.parent, "--replay", replayed, "pull",
                                   *files], capture_output=True)

        lines = journal.read_text("utf-8").splitlines()
        # Wine's XML component lays markup out much as we do, others need not.
        for written in (lines, [laid_out_anew(line) for line in lines]):
            native = replay(written)
            expect(native.returncode == 0 and native.stderr == b"", f"the replay: {native}")
            expect(canonical(native.stdout) == canonical(windows.stdout), f"replies: {windows.stdout}\n{native.stdout}")

        routed = [at for at, line in enumerate(lines) if json.loads(line)["kind"] == "router"]
        expect(len(routed) > len(COMMANDS), f"requests: {lines}")
        other = json.loads(lines[routed[-1]])
        other["request"] = other["request"].replace("<COMMAND>", "<COMMAND><OTHER/>")
        lines[routed[-1]] = json.dumps(other)
        refused = replay(lines)
        expect(refused.returncode == 3 and b"answers another request" in refused.stderr, f"another request: {refused}")
    print("ok: a journal from Windows is replayed on Linux")


def laid_out_anew(line):
    entry = json.loads(line)
    if entry["kind"] == "router":
        request = ElementTree.fromstring(entry["request"])
        ElementTree.indent(request)
        markup = ElementTree.tostring(request, "unicode", short_empty_elements=False)
        entry["request"] = "<?xml version='1.0'?>\n" + markup.replace('="', " = \"")
    return json.dumps(entry)


def canonical(replies):
    return ElementTree.canonicalize(f"<all>{replies.decode('utf-8')}</all>", strip_text=True)


def expect(condition, message):
    if not condition:
        sys.exit(f"FAILED: {message}")


main()
