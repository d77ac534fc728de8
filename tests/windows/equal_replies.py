"""The same commands on the same machine give the same replies and leave the same files on both platforms.

    equal_replies.py NATIVE_BIN WINDOWS_BIN

Replies are compared as canonical XML, since Wine's XML component lays markup out anew.
"""

import json
import re
import shutil
import subprocess
import sys
import tempfile
import xml.etree.ElementTree as ElementTree
from pathlib import Path

import wine

PULL, PULL_NGORLA = "pull", "pull-ngorla"


def canonical(markup):
    """Markup without the white space between elements, in one fixed form; so too the text of an element, where that is
    the markup of another document. (Wine also doubles the line ends of a section that stands raw, as such texts do.)"""
    root = ElementTree.fromstring(markup)
    for element in root.iter():
        if not len(element) and (element.tag == "SAP_XML" or (element.text or "").startswith("<")):
            element.text = re.sub(r"\n+", "\n", re.sub(r">\s+<", "><", element.text or ""))
        if len(element) and not (element.text or "").strip():
            element.text = None
        for child in element:
            if not (child.tail or "").strip():
                child.tail = None
    return ElementTree.canonicalize(ElementTree.tostring(root))


class Native:
    name = "native"

    def __init__(self, bin_folder, scratch):
        self.machine = Path(scratch) / "native"
        self.program = Path(bin_folder) / "parvex"
        subprocess.run([self.program, "machine", "create", self.machine], check=True)
        self.application = self.machine / "drive_c" / wine.APPLICATION
        self.settings = self.machine / "standin.json"

    def send(self, entry_point, command):
        return subprocess.run([self.program, "--machine", self.machine, entry_point, command], capture_output=True,
                              timeout=wine.TIME_LIMIT)


class Windows:
    name = "windows"

    def __init__(self, native_bin, bin_folder, scratch):
        self.program = Path(bin_folder) / "parvex.exe"
        self.commands = wine.install_machine(native_bin, bin_folder, scratch)
        self.application = wine.drive_c() / wine.APPLICATION
        self.settings = self.application / "standin.json"

    def send(self, entry_point, command):
        return wine.run(self.program, entry_point, wine.windows_path(command), check=False)


def outcome(done):
    """How a run ended, so that it can be compared: a failed call by its number, boxes by their text."""
    errors = done.stderr.decode("utf-8", "replace").replace("\r\n", "\n")
    numbers = re.findall(r"automation error (0x[0-9A-F]{8}), ([^:]*)", errors)
    boxes = ["".join(canonical_if_markup(line) for line in box.split("\n"))
             for box in re.findall(r"^--- .*? ---\n.*?\n---$", errors, re.S | re.M)]
    reply = canonical(done.stdout.decode("utf-8")) if done.stdout.strip() else ""
    return {"status": done.returncode, "errors": numbers, "boxes": boxes, "reply": reply}


def canonical_if_markup(line):
    return re.sub(r">\s+<", "><", line.strip())


def files(application):
    """What lies in the application's folder, by path. Documents are compared as such, everything else byte for byte."""
    found = {}
    for path in sorted(application.rglob("*")):
        name = str(path.relative_to(application))
        if path.is_dir() or name in ("Bin/kdwfm470.exe", "standin.json"):
            continue
        content = path.read_bytes()
        found[name] = comparable(content, path.suffix)
    return found


def comparable(content, suffix):
    if suffix == ".json":
        return json.loads(content, object_hook=lambda members: {k: markup_or_text(v) for k, v in members.items()})
    return markup_or_text(content)


def markup_or_text(value):
    if not isinstance(value, (str, bytes)) or value.lstrip()[:1] not in ("<", b"<"):
        return value
    try:
        return canonical(value)
    except ElementTree.ParseError:
        return value


def command_text(name, **parameters):
    body = "".join(f"<PARAMETER><NAME>{key}</NAME><VALUE>{value}</VALUE></PARAMETER>"
                   for key, value in parameters.items())
    return f"<COMMAND><NAME>{name}</NAME>{body}</COMMAND>"


def command_name(text):
    found = re.search(r"<COMMAND><NAME>(.*?)</NAME>", text)
    return found[1] if found else text


def way_back(quote):
    """RebuildTag commands for the tags of an exported quote document."""
    for tag in ElementTree.fromstring(quote).iter("TAG"):
        project = f"<PROJECT><TAGS>{ElementTree.tostring(tag, encoding='unicode')}</TAGS></PROJECT>"
        yield (f"<COMMAND><NAME>RebuildTag</NAME><PARAMETERS><PARAMETER>{project}</PARAMETER></PARAMETERS></COMMAND>")


def sessions(commands, quote):
    """(name, settings of the substitute, [(entry point, command document)]): each on a machine of its own."""
    sample = {path.stem: path.read_text() for path in commands.glob("*.xml")}
    yield "export", None, [(PULL_NGORLA, sample[name]) for name in ("getHybrisXMLNoUI", "getHybrisXMLNoUI-two-tags")]
    yield "interactive export", None, [(PULL, sample["getHybrisXML"]), (PULL_NGORLA, sample["getHybrisXML"])]
    yield "way back", None, [(PULL_NGORLA, text) for text in way_back(quote)]
    for group in ("project", "tag", "report"):
        yield group, None, [(PULL, sample[name]) for name in sorted(sample) if name.startswith(group + "-")]
    yield "options", None, [(PULL, sample["getOptions"]),
                            (PULL, command_text("setOptions", cmbLanguage="Français", chkShowPrices="0")),
                            (PULL, sample["getOptions"])]
    yield "refused", None, [
        (PULL, command_text("noSuchCommand")), (PULL, sample["getHybrisXMLNoUI"]), (PULL_NGORLA, sample["getOptions"]),
        (PULL, "<COMMAND/>"), (PULL_NGORLA, "no markup"),
        (PULL, command_text("addProject", projectName="Riverside Clinic")),
        (PULL, command_text("getProjectProperties", projectName="Nowhere")),
        (PULL, command_text("renameTag", projectName="Nowhere", pdsg="RTU47", tagName="A", newTagName="B")),
        (PULL, command_text("getAvailableReports", PDSG="")),
        (PULL, command_text("getReports", projectName="Riverside Clinic"))]
    yield "cancelled", '{"workflow": {"cancel": true}}', [(PULL_NGORLA, sample["getHybrisXMLNoUI"])]
    yield "router refuses", '{"router": {"refuse": ["addProject", "getTagList", "getProjectEx"]}}', [
        (PULL, sample[name]) for name in ("project-01-add", "tag-01-list", "project-06-properties")]
    yield "builder fails", '{"builder": {"failAt": "View"}}', [
        (PULL, sample[name]) for name in ("tag-06-new", "tag-07-configure", "tag-08-rebuild-all")]
    yield "report server fails", '{"reportServer": {"failAt": "MakeReport"}}', [
        (PULL, sample[name]) for name in sorted(sample) if name.startswith("report-")]


def compare(session, settings, commands, native_bin, windows_bin, scratch):
    machines = [Native(native_bin, scratch), Windows(native_bin, windows_bin, scratch)]
    for machine in machines:
        machine.settings.unlink(missing_ok=True)
        if settings:
            machine.settings.write_text(settings)
    differences = 0
    for number, (entry_point, text) in enumerate(commands, 1):
        command = Path(scratch) / "command.xml"
        command.write_text(text, encoding="utf-8")
        outcomes = [outcome(machine.send(entry_point, command)) for machine in machines]
        equal = outcomes[0] == outcomes[1]
        differences += not equal
        print(f"{'equal' if equal else 'DIFFERENT'}: {session}, {number}: {entry_point} {command_name(text)}")
        if not equal:
            for machine, seen in zip(machines, outcomes):
                print(f"  {machine.name}: {seen}"[:4000])
    left = [files(machine.application) for machine in machines]
    for name in sorted(left[0].keys() | left[1].keys()):
        if left[0].get(name) != left[1].get(name):
            differences += 1
            print(f"DIFFERENT: {session} leaves {name}")
            for machine, seen in zip(machines, left):
                print(f"  {machine.name}: {str(seen.get(name))[:4000]}")
    machines[1].settings.unlink(missing_ok=True)
    return differences


def served(native_bin):
    """(entry point, command name) of every command that is served."""
    entry_point = None
    listing = subprocess.run([Path(native_bin) / "parvex", "commands"], capture_output=True, text=True).stdout
    for line in listing.splitlines():
        if line and not line.startswith(" "):
            entry_point = line.split()[0]
        elif line:
            yield entry_point, line.split()[0]


def main():
    native_bin, windows_bin = sys.argv[1:]
    compared = different = 0
    left_out = set(served(native_bin))
    with tempfile.TemporaryDirectory() as scratch:
        first = Native(native_bin, scratch)
        commands = Path(scratch) / "commands"
        shutil.copytree(first.machine / "commands", commands)
        quote = first.send(PULL_NGORLA, commands / "getHybrisXMLNoUI.xml").stdout
        for name, settings, sent in sessions(commands, quote):
            different += compare(name, settings, sent, native_bin, windows_bin, scratch)
            compared += len(sent)
            left_out -= {(entry_point, command_name(text)) for entry_point, text in sent}
    for entry_point, name in sorted(left_out):
        print(f"NOT COMPARED: {entry_point} {name}")
    print(f"{compared} commands sent on both platforms, {different} differences, {len(left_out)} not sent")
    sys.exit(1 if different or left_out or not compared else 0)


if __name__ == "__main__":
    main()
