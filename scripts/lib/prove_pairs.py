"""Pairs of exports at random moments on one machine, each of a project of its own.

    prove_pairs.py PARVEX PAIRS SEED
"""

import json
import random
import re
import shutil
import subprocess
import sys
import tempfile
import time
from pathlib import Path

LONGEST_WAIT = 0.4  # seconds between the starts of a pair: longer than an export takes
PROJECTS = ("Riverside Clinic", "Quay")


def main():
    parvex, pairs, seed = Path(sys.argv[1]).resolve(), int(sys.argv[2]), int(sys.argv[3])
    random.seed(seed)
    with tempfile.TemporaryDirectory() as scratch:
        machine = Path(scratch) / "machine"
        subprocess.run([parvex, "machine", "create", machine], check=True, stdout=subprocess.DEVNULL)
        add_second_project(machine)

        def start(project):
            quote = Path(scratch) / f"{project}.xml"
            quote.unlink(missing_ok=True)
            return project, quote, subprocess.Popen(
                [parvex, "--machine", machine, "export", "--project", project, "--lenient", "-o", quote],
                stderr=subprocess.PIPE, text=True)

        def marks(run):
            project, quote, process = run
            said = process.communicate()[1]
            if process.returncode != 0:
                return f"ended with {process.returncode}: {said}"
            text = quote.read_text(encoding="utf-8")
            if f'LEGACY_PROJECTNAME="{project}"' not in text:
                return "names another project"
            return re.findall("<MARKFOR>(.*?)</MARKFOR>", text)

        alone = {project: marks(start(project)) for project in PROJECTS}
        if any(isinstance(found, str) for found in alone.values()) or alone[PROJECTS[0]] == alone[PROJECTS[1]]:
            sys.exit(f"the projects are no use: {alone}")
        wrong = 0
        for number in range(1, pairs + 1):
            order = random.sample(PROJECTS, 2)
            first = start(order[0])
            time.sleep(random.random() * LONGEST_WAIT)
            for run in (first, start(order[1])):
                found = marks(run)
                if found != alone[run[0]]:
                    wrong += 1
                    print(f"pair {number}, {run[0]}: {found}")
    print(f"{pairs} pairs, seed {seed}: {wrong} of {2 * pairs} exports were wrong")
    sys.exit(1 if wrong or not pairs else 0)


def add_second_project(machine):
    projects = machine / "drive_c/Korvane/TQ5-VX/Projects"
    shutil.copytree(projects / PROJECTS[0], projects / PROJECTS[1])
    units = projects / PROJECTS[1] / "units.json"
    text = units.read_text(encoding="utf-8")
    changed = text.replace('"RTU-1"', '"QUAY-1"').replace('"CH-1"', '"QUAY-2"')
    if changed == text:
        sys.exit("the sample project has other tags than expected")
    json.loads(changed)
    units.write_text(changed, encoding="utf-8")


main()
