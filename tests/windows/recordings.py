"""Records calls on both platforms: every command, and the ways in which a call fails. Each session has a machine of its
own, and a folder of cases of its own; all its commands go to one instance of one host.

On Windows (under Wine, in the prefix that WINEPREFIX names) the host is a script that uses the registered Parvex.dll;
natively it is the program.
"""

import json
import os
import shutil
import signal
import subprocess
import time
from dataclasses import dataclass, field
from pathlib import Path

import equal_replies
import wine
from equal_replies import PULL, PULL_NGORLA, command_text

ENTRIES = {PULL: "Pull", PULL_NGORLA: "PullNGORLA"}
WORKFLOW = Path("Bin", "kdwfm470.exe")
EXPORT = "getHybrisXMLNoUI"
HOST = Path(__file__).with_name("record_host.vbs")


@dataclass
class Session:
    name: str
    commands: list  # of (entry point as the program names it, the document's text)
    settings: dict = None  # of the substitute
    workflow: str = None  # what becomes of the workflow program: "missing", "crash" or "hang"
    database: bytes = None  # what the project's database holds instead
    full_disk: bool = False  # the temporary folder has no room left
    cases: list = field(default_factory=list)

    @property
    def is_killed(self):
        return self.workflow == "hang"


def all_sessions(commands, quote):
    """Of the folder of command documents and of an exported quote document."""
    sample = {path.stem: path.read_text(encoding="utf-8") for path in commands.glob("*.xml")}
    export = [(PULL_NGORLA, sample[EXPORT])]
    for name, settings, sent in equal_replies.sessions(commands, quote):
        yield Session(name, sent, settings and json.loads(settings))
    yield Session("missing workflow program", export, workflow="missing")
    yield Session("crashing workflow program", export, workflow="crash")
    yield Session("hanging workflow program, host killed", export, workflow="hang")
    yield Session("workflow program that writes nothing", export, {"workflow": {"writeNothing": True, "exitCode": 7}})
    yield Session("missing report server", [(PULL, sample["report-02-one"]), (PULL, sample["report-05-schedule"])],
                  {"reportServer": {"missing": True}})
    yield Session("missing builder", [(PULL, sample["tag-06-new"])], {"builder": {"missing": True}})
    yield Session("cancelled builder", [(PULL, sample["tag-07-configure"])], {"builder": {"cancelled": True}})
    yield Session("database that is no database",
                  [*export, *((PULL, sample[name]) for name in ("tag-02-fetch", "tag-05-delete"))],
                  database=b"This is no database.\r\n" * 200)
    yield Session("full disk", export, full_disk=True)


PAGE = 4096  # what the small file system gives room by
FILLER = "full.bin"


class FullDisk:
    """A file system without room but for a few pages in the place of a folder, while it lasts. OSError where none can be
    mounted."""

    def __init__(self, folder, pages_left=0):
        self.folder = folder
        self.pages_left = pages_left

    def __enter__(self):
        self.folder.mkdir(parents=True, exist_ok=True)
        command = ["mount", "-t", "tmpfs", "-o", "size=64k", "none", str(self.folder)]
        if subprocess.run(command, capture_output=True).returncode != 0:
            raise OSError("no small file system can be mounted")
        filler = self.folder / FILLER
        try:
            with open(filler, "wb", buffering=0) as file:
                while file.write(bytes(PAGE)):
                    pass
        except OSError:
            os.truncate(filler, filler.stat().st_size - self.pages_left * PAGE)

    def __exit__(self, *_):
        subprocess.run(["umount", str(self.folder)], check=True)


def prepare(session, machine, application):
    """Makes a new machine what the session wants."""
    machine.settings.unlink(missing_ok=True)
    if session.settings:
        machine.settings.write_text(json.dumps(session.settings))
    if session.workflow == "missing":
        (application / WORKFLOW).unlink()
    elif session.workflow:
        (application / WORKFLOW).unlink()
        machine.unruly(application / WORKFLOW, session.workflow)
    if session.database:
        for database in (application / "Projects").rglob("project.mdb"):
            database.write_bytes(session.database)


def record(session, machine, cases):
    """Carries the session out on a new machine; its cases are in the folder `cases` then."""
    cases.mkdir(parents=True)
    application = machine.install()
    prepare(session, machine, application)
    if session.full_disk:
        with FullDisk(application / "Temp"):
            machine.send(session, cases)
    else:
        machine.send(session, cases)
    session.cases = sorted(cases.iterdir(), key=order)
    if len(session.cases) != len(session.commands):
        raise RuntimeError(f"{session.name}: {len(session.commands)} commands, cases: {session.cases}")


def order(case):
    """Of cases that were recorded one after the other: time, process and number."""
    date, time_of_day, process, number = case.name.split("-")[:4]
    return date, time_of_day, int(process), int(number)


def wait_for_hang(cases, limit=60):
    """Waits until the recorded call has started its program, and that has done what it does."""
    deadline = time.monotonic() + limit
    while time.monotonic() < deadline:
        for journal in cases.glob("*.part/journal.jsonl"):
            if b'"started":true' in journal.read_bytes().replace(b" ", b""):
                time.sleep(1)
                return
        time.sleep(0.1)
    raise RuntimeError("no program was started")


class NativeMachine:
    name = "Linux"

    def __init__(self, bin_folder, scratch):
        self.program = Path(bin_folder) / "parvex"
        self.folder = Path(scratch) / "native-machine"
        self.settings = self.folder / "standin.json"

    def install(self):
        shutil.rmtree(self.folder, ignore_errors=True)
        subprocess.run([self.program, "machine", "create", self.folder], check=True, capture_output=True)
        return self.folder / "drive_c" / wine.APPLICATION

    def unruly(self, program, how):
        end = "exec sleep 600" if how == "hang" else "kill -SEGV $$"
        program.write_text(f"#!/bin/sh\nprintf '[Header]\\r\\nAct' >'{program.parent.parent}/Temp/torn.tmp'\n{end}\n")
        program.chmod(0o755)

    def send(self, session, cases):
        for entry, texts in runs_of(session.commands):
            files = []
            for number, text in enumerate(texts):
                files.append(self.folder.parent / f"command-{number}.xml")
                files[-1].write_text(text, encoding="utf-8")
            command = [self.program, "--machine", self.folder, "--record", cases, entry, *files]
            if session.is_killed:
                # A session of its own: the program that hangs is ended with its host.
                host = subprocess.Popen(command, stdout=subprocess.DEVNULL, stderr=subprocess.DEVNULL,
                                        start_new_session=True)
                wait_for_hang(cases)
                os.killpg(host.pid, signal.SIGKILL)
                host.wait()
            else:
                subprocess.run(command, capture_output=True, timeout=wine.TIME_LIMIT)


class WindowsMachine:
    name = "Windows"

    def __init__(self, native_bin, bin_folder, scratch):
        self.native_bin = Path(native_bin)
        self.bin = Path(bin_folder)
        self.scratch = Path(scratch)
        self.settings = wine.drive_c() / wine.APPLICATION / "standin.json"

    def install(self):
        wine.install_machine(self.native_bin, self.bin, self.scratch)
        return wine.drive_c() / wine.APPLICATION

    def unruly(self, program, how):
        shutil.copy(self.bin.parent / "tests/windows/unruly_workflow.exe", program)
        program.with_name("UNRULY.txt").write_text(how)

    def send(self, session, cases):
        arguments = []
        for number, (entry, text) in enumerate(session.commands):
            file = self.scratch / f"command-{number}.xml"
            file.write_text(text, encoding="utf-16")
            arguments += [ENTRIES[entry], wine.windows_path(file)]
        command = ["cscript", "/nologo", wine.windows_path(HOST), *arguments]
        os.environ["PARVEX_RECORD"] = wine.windows_path(cases)
        try:
            if session.is_killed:
                host = wine.start(*command)
                wait_for_hang(cases)
                host.kill()
                host.wait()
                wine.run("taskkill", "/f", "/im", WORKFLOW.name)
            else:
                wine.run(*command)
        finally:
            del os.environ["PARVEX_RECORD"]


def runs_of(commands):
    """Commands that follow each other by the same entry point."""
    runs = []
    for entry, text in commands:
        if not runs or runs[-1][0] != entry:
            runs.append((entry, []))
        runs[-1][1].append(text)
    return runs
