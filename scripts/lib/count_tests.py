#!/usr/bin/env python3
"""Adds up the results of ctest runs (its JUnit files): names what failed, with the end of what it said, what was
skipped, and what Wine had to be asked for twice (under_wine); ends with the totals.

Ends with 1 when anything failed, or when there was nothing to run. A file that does not exist counts as no tests: the
caller tells about it with --failed-builds.
"""

import argparse
import os
import re
import sys
import xml.etree.ElementTree as ElementTree

LINES_OF_A_FAILURE = 30


def main():
    parser = argparse.ArgumentParser(description=__doc__)
    parser.add_argument("files", nargs="*")
    parser.add_argument("--failed-builds", type=int, default=0, help="builds without results; each is one failure")
    parser.add_argument("--note", action="append", default=[], help="what the caller could not have; counted nowhere")
    arguments = parser.parse_args()

    passed, failed, skipped = 0, arguments.failed_builds, 0
    print()
    for note in arguments.note:
        print(f"skipped: {note}")
    for path in filter(os.path.exists, arguments.files):
        build = os.path.basename(os.path.dirname(path))
        for case in ElementTree.parse(path).getroot().iter("testcase"):
            outcome = outcome_of(case)
            passed += outcome == "passed"
            failed += outcome == "failed"
            skipped += outcome == "skipped"
            if outcome != "passed":
                print(f"{outcome}: {case.get('name')} ({build}){reason_of(case) if outcome == 'skipped' else ''}")
            said = (case.findtext("system-out") or "").splitlines()
            if outcome == "failed":
                for line in said[-LINES_OF_A_FAILURE:]:
                    print("  | " + line)
            for line in said:
                if line.startswith("under_wine: "):
                    print(f"note: {case.get('name')} ({build}) {line.removeprefix('under_wine: ')}")
    print(f"{passed} passed, {failed} failed" + (f", {skipped} skipped" if skipped else ""))
    return 1 if failed or not passed else 0


def outcome_of(case):
    if case.find("skipped") is not None or case.get("status") in ("notrun", "disabled"):
        # A test whose program does not exist was not run either, and that is a failure.
        skipped = case.find("skipped")
        missing = skipped is not None and "Unable to find executable" in (skipped.get("message") or "")
        return "failed" if missing else "skipped"
    return "failed" if case.find("failure") is not None or case.get("status") == "fail" else "passed"


def reason_of(case):
    """What the test said about its skipping: GoogleTest prints it behind the line with the place in the source."""
    lines = (case.findtext("system-out") or "").splitlines()
    for number, line in enumerate(lines[:-1]):
        if re.search(r": Skipped$", line):
            return ": " + lines[number + 1].strip()
    return ""


if __name__ == "__main__":
    sys.exit(main())
