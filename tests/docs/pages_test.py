#!/usr/bin/env python3
"""Holds the manual against the program and against itself: pages_test.py PARVEX SOURCES.

- Every command of the two command tables has one section in docs/commands, and no section is about another command.
- Every page of docs is reached from docs/README.md, every link within the project leads to a file, and a link to a
  heading to that heading.
"""

import re
import subprocess
import sys
from pathlib import Path

COMMAND_NAME = re.compile(r"[A-Za-z]+[a-z][A-Z][A-Za-z]*")


def main(parvex, sources):
    sources = Path(sources)
    failures = wrong_sections(parvex, sources) + wrong_links(sources)
    for failure in failures:
        print(failure)
    return 1 if failures else 0


def wrong_sections(parvex, sources):
    listed = subprocess.run([parvex, "commands"], check=True, capture_output=True, text=True).stdout
    commands = set(re.findall(r"^  (\S+)", listed, re.MULTILINE))
    if len(commands) < 2:
        return [f"no commands listed: {listed}"]
    sections = [(name, page.name) for page in sorted((sources / "docs/commands").glob("*.md"))
                for heading in headings_of(page) for name in heading.split(", ") if COMMAND_NAME.fullmatch(name)]
    documented = [name for name, _ in sections]
    return ([f"docs/commands has no section about {name}" for name in sorted(commands - set(documented))] +
            [f"docs/commands/{page}: there is no command {name}" for name, page in sections if name not in commands] +
            [f"docs/commands has several sections about {name}" for name in sorted(set(documented))
             if documented.count(name) > 1])


def wrong_links(sources):
    pages = sorted(sources.glob("*.md")) + sorted(sources.glob("docs/**/*.md"))
    failures = []
    for page in pages:
        for target in links_of(page):
            path, _, heading = target.partition("#")
            found = (page.parent / path).resolve() if path else page
            if not found.exists():
                failures.append(f"{page.relative_to(sources)}: {target} leads nowhere")
            elif heading and heading not in map(anchor_of, headings_of(found)):
                failures.append(f"{page.relative_to(sources)}: {target} leads to no heading")
    index = sources / "docs/README.md"
    reached = {(index.parent / target.partition("#")[0]).resolve() for target in links_of(index)}
    return failures + [f"docs/README.md does not mention {page.relative_to(sources)}" for page in pages
                       if page.parent != sources and page != index and page.resolve() not in reached]


def text_of(page):
    """The page without its blocks of code, in which nothing is a heading or a link."""
    return re.sub(r"^```.*?^```", "", page.read_text(encoding="utf-8"), flags=re.MULTILINE | re.DOTALL)


def headings_of(page):
    return re.findall(r"^#+ (.*)$", text_of(page), re.MULTILINE)


def anchor_of(heading):
    return re.sub(r"[^\w\- ]", "", heading.lower()).replace(" ", "-")


def links_of(page):
    return [target for target in re.findall(r"\]\(([^)\s]+)\)", text_of(page)) if "://" not in target]


if __name__ == "__main__":
    sys.exit(main(*sys.argv[1:]))
