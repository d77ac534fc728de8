"""Exports of the Windows build beside two busy loops: is each the whole quote, and what happened where it is not?

    prove_busy_exports.py NATIVE_BIN WINDOWS_BIN RUNS KEPT

KEPT is a folder, made anew, in which the recordings of the wrong ones stay. LOOPS in the environment is the number of busy
loops, for a machine that is busy already.
"""

import json
import os
import shutil
import subprocess
import sys
import tempfile
from collections import Counter
from pathlib import Path

import export_machine

PROJECT = "Riverside Clinic"
BUSY = int(os.environ.get("LOOPS", "2"))


def main():
    native_bin, windows_bin, runs, kept = sys.argv[1], sys.argv[2], int(sys.argv[3]), Path(sys.argv[4])
    shutil.rmtree(kept, ignore_errors=True)
    kept.mkdir(parents=True)
    outcomes = Counter()
    loops = []
    with tempfile.TemporaryDirectory() as scratch:
        machine = export_machine.install(Path(scratch), native_bin, windows_bin)
        quote, cases = Path(scratch) / "quote.xml", Path(scratch) / "cases"
        whole, ended = export(machine, quote, cases)
        if whole is None:
            sys.exit(f"the export fails on the idle machine: {ended}")
        try:
            loops += [subprocess.Popen([sys.executable, "-c", "while True: pass"], start_new_session=True)
                      for _ in range(BUSY)]
            for number in range(1, runs + 1):
                shutil.rmtree(cases, ignore_errors=True)
                found, ended = export(machine, quote, cases)
                if found == whole:
                    outcomes["whole"] += 1
                    continue
                said = f"{ended}; {what_happened(native_bin, cases)}"
                outcomes[said] += 1
                print(f"run {number}: {said}", flush=True)
                if cases.exists():
                    shutil.copytree(cases, kept / str(number))
        finally:
            for loop in loops:
                loop.kill()
                loop.wait()
    for outcome, count in outcomes.most_common():
        print(f"{count:6}  {outcome}")
    sys.exit(0 if outcomes["whole"] == runs else 1)


def export(machine, quote, cases):
    """The quote as the program wrote it, None where it wrote none; and how it ended."""
    quote.unlink(missing_ok=True)
    process = machine.start_export(PROJECT, quote, cases)
    said = process.communicate()[1].strip()
    return quote.read_bytes() if quote.exists() else None, f"ended with {process.returncode}, saying {said!r}"


def what_happened(native_bin, cases):
    """What the recording says: the findings, and how each program ended."""
    if not cases.exists() or not any(cases.iterdir()):
        return "nothing was recorded: the program did not begin"
    said = []
    for case in sorted(cases.iterdir()):
        shown = subprocess.run([Path(native_bin) / "parvex", "case", "show", "--json", case], capture_output=True)
        if shown.returncode != 0:
            said.append(f"{case.name} cannot be read: {shown.stderr.decode()}")
            continue
        told = json.loads(shown.stdout)
        said.append(told["outcome"])
        for step in told["steps"]:
            if step.get("kind") == "finding" or step.get("op") == "end":
                said.append(", ".join(f"{key} {step[key]}" for key in ("text", "exitCode") if key in step))
    return "; ".join(said)


main()
