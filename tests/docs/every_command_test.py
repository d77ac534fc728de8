#!/usr/bin/env python3
"""Holds every command that the manual shows against what there is.

    every_command_test.py PARVEX SOURCES CARRIED_OUT_PAGE...

- A line "$ ..." stands only on a page that examples_test.py carries out (those are named), and a line of a Windows command
  prompt only on one that tests/windows/pages_test.py types.
- Any other line that is a command is one of RUN_ELSEWHERE, or a synopsis of `parvex`.
- Wherever a page shows `parvex` with words behind it, the commands and options exist. A synopsis in docs/program.md has
  all options of its command.
"""

import ast
import re
import subprocess
import sys
from functools import lru_cache
from pathlib import Path

WINDOWS_PAGES_TEST = "tests/windows/pages_test.py"
COMMAND = re.compile(r"(\$ |> |parvex |(scripts/|bench/|build/|tests/|cmake|ctest|msiexec|regsvr32|explorer|echo|strace|apt|sudo|"
                     r"python3|export|mv|cp|cd)\b|%\w|\"%|[A-Z_]+=\S+ \w)")
WINDOWS_COMMAND = re.compile(r"(> |msiexec|regsvr32|explorer|echo|parvex(\.exe)? |%\w|\"%)")
SYNOPSIS = re.compile(r"\b[A-Z]{2,}\b|[\[|]")

# What no test of the pages carries out: which page it stands on, how it begins, and where it is run instead.
RUN_ELSEWHERE = (
    ("README.md", "scripts/demo", "windows.demo; a clean clone before each landing"),
    ("README.md", "scripts/test", "itself"),
    ("README.md", "apt install ./build/packages/parvex_*.deb", "packaging.debian"),
    ("CONTRIBUTING.md", "cmake --build build/native --target unit_hybris", "scripts/test builds and runs the program"),
    ("docs/speed.md", "bench/export/make_selection.py", "scripts/bench"),
    ("docs/speed.md", "strace -c -f build/native/bin/parvex", "by hand: counts are compared with nothing"),
    ("docs/testing.md", "scripts/fuzz", "by hand; scripts/test runs every target over its seeds"),
    ("docs/testing.md", "scripts/in-debian", "scripts.in_debian; 32-bit tests use it"),
    ("docs/testing.md", "WINEPREFIX=$PWD/build/wine python3 -B tests/windows/random_selections.py",
     "windows.random_selections, with fewer"),
    ("docs/testing.md", "scripts/prove-", "by hand: hours"),
)


def main(parvex, sources, *carried_out):
    sources = Path(sources)
    carried_out = {Path(page).relative_to(sources) for page in carried_out}
    typed = windows_pages(sources)
    pages = [page.relative_to(sources) for pattern in ("*.md", "docs/**/*.md", "samples/*.md")
             for page in sorted(sources.glob(pattern))]
    program = Program(parvex)
    failures = []
    found = set()
    count = 0
    for page in pages:
        if page.name == "CHANGELOG.md":
            continue
        text = (sources / page).read_text(encoding="utf-8")
        for line in command_lines(text):
            count += 1
            failures += [f"{page}: {what}: {line}" for what in
                         problems_of_line(page, line, carried_out, typed, program, sources, found)]
        for code in re.findall(r"`(parvex [^`]*)`", text.replace("\n", " ")):
            count += 1
            failures += [f"{page}: {what}: {code}" for what in program.problems_of(code, inline=True)]
    failures += [f"{page} does not show {command!r}" for page, command, _ in RUN_ELSEWHERE if (page, command) not in found]
    failures += synopses_with_gaps(sources / "docs/program.md", program)
    if count < 50:
        failures.append(f"only {count} commands were found")
    for failure in failures:
        print(failure)
    return 1 if failures else 0


def command_lines(text):
    """The lines of indented blocks that are commands, without what stands behind them for people."""
    for line in re.findall(r"^ {4,}(\S.*)$", text, re.MULTILINE):
        if COMMAND.match(line):
            yield line


def windows_pages(sources):
    """The pages that the test under Wine types, by its own list."""
    tree = ast.parse((sources / WINDOWS_PAGES_TEST).read_text(encoding="utf-8"))
    for node in tree.body:
        if isinstance(node, ast.Assign) and node.targets[0].id == "PAGES":
            return {Path(page) for page in ast.literal_eval(node.value)}
    sys.exit(f"{WINDOWS_PAGES_TEST} has no list PAGES")


def problems_of_line(page, line, carried_out, typed, program, sources, found):
    if line.startswith("$ "):
        return [] if page in carried_out else ["nobody carries this out"]
    for where, beginning, _ in RUN_ELSEWHERE:
        if page == Path(where) and line.startswith(beginning):
            found.add((where, beginning))
            script = line.split()[0]
            return [] if not script.startswith(("scripts/", "bench/")) or (sources / script).is_file() or \
                "-" == script[-1] else [f"there is no {script}"]
    if page in typed and WINDOWS_COMMAND.match(line):
        return []
    if line.startswith("parvex ") and SYNOPSIS.search(line):
        return program.problems_of(line)
    return ["nobody carries this out"]


class Program:
    """What `parvex` takes, by its own help."""

    def __init__(self, parvex):
        self.parvex = parvex
        self.everywhere = self.options_of(())

    @lru_cache(maxsize=None)
    def help_of(self, words):
        done = subprocess.run([self.parvex, *words, "--help"], capture_output=True, text=True)
        if done.returncode != 0:
            sys.exit(f"parvex {' '.join(words)} --help ended with {done.returncode}")
        return done.stdout

    def options_of(self, words):
        """Names of the options, and whether a value stands behind each."""
        options = {}
        for names, value in re.findall(r"^  (-\S+)(?: ([A-Z|a-z-]+)(?= |$))?", self.help_of(words), re.MULTILINE):
            for name in names.split(","):
                options[name] = bool(value)
        return options

    def commands_of(self, words):
        _, _, listed = self.help_of(words).partition("Subcommands:\n")
        return set(re.findall(r"^  ([a-z]\S*)", listed, re.MULTILINE))

    def parse(self, text):
        """The command's words, its options, and what is wrong."""
        words, options, problems = (), [], []
        tokens = iter(re.sub(r"[\[\]]|\.\.\.", " ", text).replace(" | ", " ").split()[1:])
        for token in tokens:
            if token in (">", "|", "||", "<"):
                break
            if token.startswith("-") and len(token) > 1:
                name = token.partition("=")[0].rstrip(",")
                known = {**self.everywhere, **self.options_of(words)}
                if name not in known:
                    problems.append(f"there is no option {name}")
                    continue
                options.append(name)
                if known[name] and "=" not in token:
                    next(tokens, None)
            elif token in self.commands_of(words):
                words += (token,)
            elif self.commands_of(words) and re.fullmatch(r"[a-z][a-z0-9-]*", token):
                problems.append(f"there is no command {' '.join((*words, token))}")
                break
        return words, options, problems

    def problems_of(self, text, inline=False):
        if inline and ("COMMAND" in text or text.startswith("parvex: ")):
            return []
        return self.parse(text)[2]


def synopses_with_gaps(page, program):
    """Options that a command of the page's synopses has, and the page never names behind it."""
    shown = {}
    text = page.read_text(encoding="utf-8")
    for line in re.findall(r"^    (parvex .*)$", text, re.MULTILINE):
        words, options, _ = program.parse(line)
        shown.setdefault(words, set()).update(options)
    failures = []
    for words, options in shown.items():
        listed = re.findall(r"^  (-\S+)", program.help_of(words), re.MULTILINE)
        for names in listed:
            if names != "-h,--help" and not options & set(names.split(",")):
                failures.append(f"{page.name}: the synopsis of {' '.join(words)} lacks {names}")
    return failures or ([] if shown else [f"{page.name} has no synopsis"])


if __name__ == "__main__":
    sys.exit(main(*sys.argv[1:]))
