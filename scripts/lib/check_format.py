#!/usr/bin/env python3
"""Names every source that differs from what clang-format 14 makes of it: check_format.py TOP. Other versions format
differently, so that nothing is checked without that one: then it ends with 77."""

import os
import re
import shutil
import subprocess
import sys

VERSION = 14
FOLDERS = ["src", "legacy_standin", "tests", "bench", "fuzz", "samples"]


def sources_of(top):
    for folder in FOLDERS:
        for path, _, names in os.walk(os.path.join(top, folder)):
            for name in sorted(names):
                if name.endswith((".cpp", ".h")):
                    yield os.path.join(path, name)


def formatter():
    """The program, or None and the reason."""
    found = None
    for name in [f"clang-format-{VERSION}", "clang-format"]:
        if shutil.which(name):
            text = subprocess.run([name, "--version"], capture_output=True, encoding="utf-8").stdout
            found = re.search(r"version (\d+)", text)
            if found and int(found[1]) == VERSION:
                return name, None
    return None, f"clang-format is version {found[1]}, not {VERSION}" if found else "clang-format is not installed"


def main():
    top = os.path.abspath(sys.argv[1])
    program, reason = formatter()
    if not program:
        print(f"check_format.py: Skipped\n{reason}: the format of the sources is not checked")
        return 77
    sources = list(sources_of(top))
    run = subprocess.run([program, "--dry-run", *sources], cwd=top, capture_output=True, encoding="utf-8")
    wrong = sorted(set(re.findall(r"^(\S.*?):\d+:\d+: ", run.stderr, re.MULTILINE)))
    for path in wrong:
        print(f"{os.path.relpath(path, top)} is formatted otherwise: {program} -i")
    if run.returncode and not wrong:
        print(run.stderr)
    print(f"{len(sources)} sources looked at")
    return 1 if wrong or run.returncode or not sources else 0


if __name__ == "__main__":
    sys.exit(main())
