"""Records every command and every way to fail, and runs what was recorded.

    prove_recordings.py record-linux NATIVE_BIN CASES
    prove_recordings.py record-windows NATIVE_BIN WINDOWS_BIN COM_CLIENT CASES     in the prefix that WINEPREFIX names
    prove_recordings.py run NATIVE_BIN CASES...                                   all of them, natively
    prove_recordings.py run-windows WINDOWS_BIN CASES...                          all of them, under Wine

CASES is a folder, which is made anew by the first two; COM_CLIENT the test program with the strict legacy servers, or "-".
Recording ends with 1 when a command was not recorded, running when a case is not reproduced. The last lines are a table.
"""

import os
import shutil
import subprocess
import sys
import tempfile
from pathlib import Path

import equal_replies
import prepare
import recordings
import wine

STRICT = "strict servers"


def record(machine, native_bin, scratch, cases):
    """Gives the sessions that could not be recorded, with the reason."""
    first = recordings.NativeMachine(native_bin, scratch)
    first.install()
    commands = Path(scratch) / "commands"
    shutil.copytree(first.folder / "commands", commands)
    quote = subprocess.run([first.program, "--machine", first.folder, equal_replies.PULL_NGORLA,
                            commands / f"{recordings.EXPORT}.xml"], capture_output=True, check=True).stdout
    left = {}
    for session in recordings.all_sessions(commands, quote):
        try:
            recordings.record(session, machine, cases / session.name)
            print(f"recorded on {machine.name}: {session.name}, {len(session.cases)} calls", flush=True)
        except (OSError, RuntimeError, subprocess.TimeoutExpired) as failure:
            left[session.name] = str(failure)
    return left


def record_strict_servers(com_client, cases):
    """The test program is the host, and its typed servers the legacy application."""
    cases.mkdir()
    os.environ["PARVEX_RECORD"] = wine.windows_path(cases)
    try:
        wine.run(com_client, "--gtest_filter=StrictServers.*")
    finally:
        del os.environ["PARVEX_RECORD"]
    print(f"recorded on Windows: {STRICT}, {len(list(cases.iterdir()))} calls", flush=True)


def check_all(native_bin, cases, left):
    """Ends the program with 1 when a command that is served was not recorded, or a session could not be."""
    recorded = {path.name.split("-")[4].split(".")[0] for path in cases.glob("*/*.pvxcase*")}
    missing = sorted({name for _, name in equal_replies.served(native_bin)} - recorded)
    for name in missing:
        print(f"NOT RECORDED: {name}")
    for name, reason in left.items():
        print(f"NOT RECORDED: {name}: {reason}")
    sys.exit(1 if missing or left else 0)


def record_linux(native_bin, cases):
    cases = fresh(cases)
    with tempfile.TemporaryDirectory() as scratch:
        left = record(recordings.NativeMachine(native_bin, scratch), native_bin, scratch, cases)
    check_all(native_bin, cases, left)


def record_windows(native_bin, windows_bin, com_client, cases):
    cases = fresh(cases)
    prepare.prepare(Path(native_bin), Path(windows_bin))
    closer = wine.start(Path(windows_bin).parent / "tests/windows/box_closer.exe")
    try:
        with tempfile.TemporaryDirectory() as scratch:
            left = record(recordings.WindowsMachine(native_bin, windows_bin, scratch), native_bin, scratch, cases)
            if com_client != "-":
                wine.install_machine(native_bin, windows_bin, scratch)
                record_strict_servers(com_client, cases / STRICT)
    finally:
        closer.kill()
    check_all(native_bin, cases, left)


def fresh(cases):
    shutil.rmtree(cases, ignore_errors=True)
    Path(cases).mkdir(parents=True)
    return Path(cases)


def run_all(where, run, folders):
    """`run` gives the exit status and what was told of one case."""
    table, bad = [], 0
    for folder in map(Path, folders):
        cases = [case for session in sorted(folder.iterdir()) for case in sorted(session.iterdir(), key=recordings.order)]
        for case in cases:
            status, told = run(case)
            bad += status != 0
            command = case.name.split("-")[4].split(".")[0]
            result = "reproduced" if status == 0 else "NOT REPRODUCED"
            table.append(f"| {folder.name} | {case.parent.name} | {command} | {result} |")
            if status != 0:
                print(f"{case}:\n{told}", flush=True)
    print(f"\nRun on {where}:\n\n| recorded | session | command | |\n|---|---|---|---|")
    print("\n".join(table))
    print(f"\n{len(table) - bad} reproduced on {where}, {bad} not")
    sys.exit(1 if bad or not table else 0)


def run_native(native_bin, *folders):
    def run(case):
        done = subprocess.run([Path(native_bin) / "parvex", "case", "run", case], capture_output=True)
        return done.returncode, (done.stdout + done.stderr).decode(errors="replace")
    run_all("Linux", run, folders)


def run_windows(windows_bin, *folders):
    def run(case):
        done = wine.run(Path(windows_bin) / "parvex.exe", "case", "run", wine.windows_path(case), check=False)
        return done.returncode, (done.stdout + done.stderr).decode(errors="replace")
    run_all("Windows", run, folders)


if __name__ == "__main__":
    {"record-linux": record_linux, "record-windows": record_windows, "run": run_native,
     "run-windows": run_windows}[sys.argv[1]](*sys.argv[2:])
