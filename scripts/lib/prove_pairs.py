"""Pairs of exports at random moments on one machine, each of a project of its own.

    prove_pairs.py NATIVE_BIN PAIRS SEED
    prove_pairs.py NATIVE_BIN PAIRS SEED WINDOWS_BIN     the Windows build, in the prefix that WINEPREFIX names
"""

import random
import re
import sys
import tempfile
import time
from pathlib import Path

import export_machine

PROJECTS = ("Riverside Clinic", "Quay")


def main():
    pairs, seed = int(sys.argv[2]), int(sys.argv[3])
    random.seed(seed)
    with tempfile.TemporaryDirectory() as scratch:
        machine = export_machine.install(Path(scratch), *sys.argv[1:2], *sys.argv[4:])
        machine.add_project(*PROJECTS, {"RTU-1": "QUAY-1", "CH-1": "QUAY-2"})

        def start(project):
            quote = Path(scratch) / f"{project}.xml"
            quote.unlink(missing_ok=True)
            return project, quote, machine.start_export(project, quote)

        def marks(run):
            project, quote, process = run
            said = process.communicate()[1]
            if process.returncode != 0:
                return f"ended with {process.returncode}: {said}"
            text = quote.read_text(encoding="utf-8")
            if f'LEGACY_PROJECTNAME="{project}"' not in text:
                return "names another project"
            return re.findall("<MARKFOR>(.*?)</MARKFOR>", text)

        alone = {}
        for project in PROJECTS:
            begun = time.monotonic()
            alone[project] = marks(start(project))
            longest_wait = 1.5 * (time.monotonic() - begun)  # the second of a pair starts before the first has ended, mostly
        if any(isinstance(found, str) for found in alone.values()) or alone[PROJECTS[0]] == alone[PROJECTS[1]]:
            sys.exit(f"the projects are no use: {alone}")
        wrong = 0
        for number in range(1, pairs + 1):
            order = random.sample(PROJECTS, 2)
            first = start(order[0])
            time.sleep(random.random() * longest_wait)
            for run in (first, start(order[1])):
                found = marks(run)
                if found != alone[run[0]]:
                    wrong += 1
                    print(f"pair {number}, {run[0]}: {found}", flush=True)
    print(f"{machine.name}: {pairs} pairs, seed {seed}: {wrong} of {2 * pairs} exports were wrong")
    sys.exit(1 if wrong or not pairs else 0)


main()
