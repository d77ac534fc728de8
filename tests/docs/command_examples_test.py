#!/usr/bin/env python3
"""Holds the reference pages against what `parvex commands` tells, and what commands do.

    command_examples_test.py PARVEX SOURCES [--write]

- Each section about a command in docs/commands has, between two marks, a whole request and the whole reply that a sample
  machine of its own gives to it. --write puts them there.
- Each text that a failed command answers with stands on the page of the command, and each number in docs/errors.md.
- Each parameter that a handler reads by its name is one that the reference names.

In a reply each element stands on a line of its own, and a text of more than 60 characters is cut ("...").
"""

import json
import re
import subprocess
import sys
import tempfile
from pathlib import Path
from xml.dom import minidom

LONGEST_TEXT = 60
LONGEST_REPLY = 70  # lines; a longer one lies in a file beside the page
HANDLERS = ("projects", "tags", "options", "reports", "hybris")
# Parameters that handlers add themselves before they read them.
OWN_PARAMETERS = {"pdsgOfOwner"}


def main(parvex, sources, *options):
    sources = Path(sources)
    commands = json.loads(run([parvex, "commands", "--json"]))
    by_name = {command["name"]: command for command in commands}
    failures = []
    for command in commands:
        page = page_about(sources, command["name"])
        if page is None:
            failures.append(f"docs/commands has no section about {command['name']}")
            continue
        failures += wrong_example(parvex, page, command, by_name, "--write" in options)
        failures += missing_failures(sources, page, command)
    failures += unnamed_parameters(sources, commands)
    for failure in failures:
        print(failure)
    return 1 if failures else 0


def run(arguments):
    return subprocess.run(arguments, check=True, capture_output=True).stdout.decode("utf-8")


# ---- Examples ----

def wrong_example(parvex, page, command, by_name, writes):
    request, reply = command["request"], readable(reply_to(parvex, command, by_name))
    name = command["name"]
    beside = page.parent / "replies" / f"{name}.xml"
    is_long = reply.count("\n") > LONGEST_REPLY
    shown = f"[the whole document](replies/{name}.xml)\n" if is_long else f"```xml\n{reply}```\n"
    after = f" after that of `{command['runsAfter']}`" if command["runsAfter"] else ""
    block = (f"{begin_of(name)}\nA whole `{name}`{after}, and what the sample machine answers:\n\n"
             f"```xml\n{request}```\n\n{shown}{end_of(name)}\n")
    text = page.read_text(encoding="utf-8")
    if writes:
        page.write_text(with_block(text, name, block), encoding="utf-8")
        if is_long:
            beside.parent.mkdir(exist_ok=True)
            beside.write_text(reply, encoding="utf-8")
        return []
    if block not in text:
        return [f"{page}: the example of {name} is not\n{block}"]
    if is_long and (not beside.exists() or beside.read_text(encoding="utf-8") != reply):
        return [f"{beside} is not\n{reply}"]
    return []


def begin_of(name):
    return f"<!-- example of {name}: made by tests/docs/command_examples_test.py -->"


def end_of(name):
    return f"<!-- end of the example of {name} -->"


def with_block(text, name, block):
    """The page with the example in place of the one that stands there, or at the end of the command's first text."""
    if begin_of(name) in text:
        start = text.index(begin_of(name))
        end = text.index(end_of(name)) + len(end_of(name)) + 1
        return text[:start] + block + text[end:]
    section = re.search(rf"^#+ (?:.*, )?{name}(?:,.*)?$", text, re.MULTILINE).end()
    next_heading = re.compile(r"^#+ ", re.MULTILINE).search(without_blocks(text), section)
    at = next_heading.start() if next_heading else len(text)
    return text[:at].rstrip("\n") + "\n\n" + block + ("\n" + text[at:] if next_heading else "")


def without_blocks(text):
    """The same text, each character of its blocks of code replaced."""
    return re.sub(r"^```.*?^```", lambda block: re.sub(r"[^\n]", " ", block.group()), text,
                  flags=re.MULTILINE | re.DOTALL)


def reply_to(parvex, command, by_name):
    with tempfile.TemporaryDirectory() as folder:
        machine = f"{folder}/sample"
        run([parvex, "machine", "create", machine])
        if command["runsAfter"]:
            send(parvex, machine, by_name[command["runsAfter"]])
        return send(parvex, machine, command)


def send(parvex, machine, command):
    document = Path(machine) / "example.xml"
    document.write_text(command["request"], encoding="utf-8")
    entry_point = "pull" if "Pull" in command["entryPoints"] else "pull-ngorla"
    return run([parvex, "--machine", machine, entry_point, str(document)])


def readable(reply):
    lines = []
    write_lines(minidom.parseString(reply).documentElement, "", lines)
    return "\n".join(lines) + "\n"


def write_lines(element, indent, lines):
    start = element.tagName + "".join(f' {name}="{escaped(cut(value))}"' for name, value in element.attributes.items())
    children = [node for node in element.childNodes if node.nodeType == node.ELEMENT_NODE]
    if children:
        lines.append(f"{indent}<{start}>")
        for child in children:
            write_lines(child, indent + "  ", lines)
        lines.append(f"{indent}</{element.tagName}>")
        return
    text = "".join(f"<![CDATA[{cut(node.data)}]]>" if node.nodeType == node.CDATA_SECTION_NODE
                   else escaped(cut(node.data)) for node in element.childNodes)
    lines.append(f"{indent}<{start}>{text}</{element.tagName}>" if text else f"{indent}<{start}/>")


def cut(text):
    text = re.sub(r"\s+", " ", text)
    return text if len(text) <= LONGEST_TEXT else text[:LONGEST_TEXT - 20] + "..."


def escaped(text):
    return text.replace("&", "&amp;").replace("<", "&lt;").replace(">", "&gt;").replace('"', "&quot;")


# ---- Gaps ----

def page_about(sources, name):
    for page in sorted((sources / "docs/commands").glob("*.md")):
        headings = re.findall(r"^#+ (.*)$", without_blocks(page.read_text(encoding="utf-8")), re.MULTILINE)
        if any(name in heading.split(", ") for heading in headings):
            return page
    return None


def missing_failures(sources, page, command):
    text = " ".join(page.read_text(encoding="utf-8").split())
    errors = (sources / "docs/errors.md").read_text(encoding="utf-8")
    failures = []
    for failure in command["failures"]:
        told = failure["text"].strip()
        if failure["kind"] in ("failedReply", "toldInReply") and told not in text and told not in generic(text):
            failures.append(f"{page} does not say \"{told}\", which {command['name']} may answer with")
        if failure["number"] and f"| {failure['number']} | 0x" not in errors:
            failures.append(f"docs/errors.md does not list {failure['number']}, which may end {command['name']}")
    return failures


def generic(text):
    """Pages that speak of "the failed reply" mean the usual text."""
    return "Unrecognized or Failed Command" if "failed reply" in text else ""


def unnamed_parameters(sources, commands):
    named = {parameter["name"] for command in commands for parameter in command["parameters"]}
    read = {}
    for folder in HANDLERS:
        for source in sorted((sources / "src" / folder).glob("*.cpp")):
            for name in re.findall(r'GetParam(?:FromCmdDoc|Value)\(\w+, "(\w+)"|HasParameter\(\w+, "(\w+)"',
                                   source.read_text(encoding="utf-8")):
                read["".join(name)] = source.relative_to(sources)
    if len(read) < 10:
        return [f"handlers seem to read {len(read)} parameters only"]
    return [f"{source} reads the parameter {name}, which no command's reference names"
            for name, source in read.items() if name not in named | OWN_PARAMETERS]


if __name__ == "__main__":
    sys.exit(main(*sys.argv[1:]))
