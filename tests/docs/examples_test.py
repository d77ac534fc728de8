#!/usr/bin/env python3
"""Carries out the commands that pages of the manual show, and compares what they show of the output.

    examples_test.py PARVEX PAGE...

A command is an indented line that begins with "$ ". The indented lines behind it, up to the next command or the end of
the block, are what it prints; none means that it prints nothing. A line "..." stands for any lines, "..." within a line
for any text. The commands of one page are carried out by one shell in an empty folder, and each has to succeed.
"""

import os
import re
import subprocess
import sys
import tempfile

INDENT = "    "


def main(parvex, *pages):
    failures = [failure for page in pages for failure in failures_of(page, os.path.dirname(os.path.abspath(parvex)))]
    for failure in failures:
        print(failure)
    return 1 if failures else 0


def failures_of(page, program_folder):
    examples = examples_in(page)
    if not examples:
        return [f"{page} shows no command"]
    printed, status = carry_out([command for command, _ in examples], program_folder)
    if status != 0:
        where = len(printed) - 1
        return [f"{page}: \"{examples[where][0]}\" ended with {status}\n{printed[where]}"]
    return [f"{page}: \"{command}\" printed\n{found}instead of\n" + "\n".join(shown)
            for (command, shown), found in zip(examples, printed) if not pattern_of(shown).fullmatch(found)]


def examples_in(page):
    """Pairs of a command and the lines that it prints."""
    examples = []
    open_example = None
    with open(page, encoding="utf-8") as lines:
        for line in map(str.rstrip, lines):
            if line.startswith(INDENT + "$ "):
                open_example = []
                examples.append((line[len(INDENT) + 2:], open_example))
            elif line.startswith(INDENT) and open_example is not None:
                open_example.append(line[len(INDENT):])
            else:
                open_example = None
    return examples


def carry_out(commands, program_folder):
    """What each command printed, up to the first one that failed, and the exit status of the last."""
    marker = "-- end of a command --"
    script = "set -e\n" + "".join(f"{{\n{command}\n}} 2>&1\necho '{marker}'\n" for command in commands)
    environment = {**os.environ, "PATH": program_folder + os.pathsep + os.environ["PATH"], "LC_ALL": "C.UTF-8"}
    environment.pop("PARVEX_MACHINE", None)
    with tempfile.TemporaryDirectory() as folder:
        done = subprocess.run(["bash", "-c", script], cwd=folder, env=environment, stdin=subprocess.DEVNULL,
                              stdout=subprocess.PIPE, stderr=subprocess.STDOUT)
    texts = done.stdout.decode("utf-8", "replace").replace("\r\n", "\n").split(marker + "\n")
    return (texts[:-1] if done.returncode == 0 else texts), done.returncode


def pattern_of(shown):
    parts = [r"(?:.*\n)*?" if line == "..." else re.escape(line).replace(re.escape("..."), ".*") + r"\n"
             for line in shown]
    return re.compile("".join(parts))


if __name__ == "__main__":
    sys.exit(main(*sys.argv[1:]))
