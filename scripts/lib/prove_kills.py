"""Commands that are killed at random moments of their run.

    prove_kills.py PARVEX KILLS SEED

A command runs undisturbed first: that gives its duration, and the files before, at its hand-overs and after. Then it is
killed, with the program that it started, at a moment that is equally likely anywhere in that time. Afterwards each file
is as it was before or after (or between, where a command writes a file twice), files that belong together agree, and the
command, sent again, leaves what an undisturbed one leaves.
"""

import io
import multiprocessing
import os
import random
import re
import shutil
import signal
import statistics
import subprocess
import sys
import tempfile
import time
import zipfile
from pathlib import Path

CLINIC = "Riverside Clinic"
ROOT = "drive_c/Korvane/TQ5-VX/"
TEMP = ROOT + "Temp/"
LEFT = re.compile(r"(^|/)(~parvex-[0-9a-z]+\.tmp|~change\.zip|~content\.zip|~unfinished|~removed)$")
# What a command is measured by, and how much longer than that it may live.
MEASURED = 5
LONGER = 1.1


def command(name, **parameters):
    values = "".join(f"<PARAMETER><NAME>{key}</NAME><VALUE>{value}</VALUE></PARAMETER>"
                     for key, value in parameters.items())
    return f"<COMMAND><NAME>{name}</NAME>{values}</COMMAND>"


def sample(name):
    return lambda place: place.pull(f"commands/{name}.xml")


def sent(name, **parameters):
    def line(place):
        path = place.root / f"{name}.xml"
        path.write_text(command(name, **parameters), encoding="utf-8")
        return place.pull(f"../{name}.xml")
    return line


def program(*arguments):
    return lambda place: [argument.format(machine=place.machine, root=place.root) for argument in arguments]


def on_machine(*arguments):
    return program("--machine", "{machine}", *arguments)


EXPORT = on_machine("export", "--project", CLINIC, "-o", "{root}/out/quote.xml")
ADD, SET, COPY, RENAME = (sample(f"project-0{number}") for number in ("1-add", "2-set-properties", "4-copy", "5-rename"))
ARCHIVE, DELETE, RETRIEVE = (sample(f"project-0{number}") for number in ("7-archive", "8-delete", "9-retrieve"))
TAG_RENAME, TAG_COPY, TAG_DELETE = (sample(f"tag-0{number}") for number in ("3-rename", "4-copy", "5-delete"))
RETURN = on_machine("return", "{root}/out/quote.xml", "--tag", "1")
RECORDED = on_machine("--record", "{root}/cases", "pull", "{machine}/commands/getOptions.xml")
OTHER_PAGE = program("show", "{root}/out/quote.xml", "--html", "{root}/out/page.html")

# name: what is done before, the command
COMMANDS = {
    "setOptions": ([], sent("setOptions", cmbLanguage="Deutsch", txtReportFooter="Nothing is lost")),
    "configureTag (ui settings)": ([], sample("tag-07-configure")),
    "setProjectProperties": ([ADD], SET),
    "addProject": ([], ADD),
    "copyProject": ([ADD, SET], COPY),
    "renameProject": ([ADD, SET], RENAME),
    "deleteProject": ([ADD, SET, RENAME, ARCHIVE], DELETE),
    "archiveProject": ([ADD, SET, RENAME], ARCHIVE),
    "retrieveProject, new": ([ADD, SET, RENAME, ARCHIVE, DELETE], RETRIEVE),
    "retrieveProject, over one": ([ADD, RENAME, ARCHIVE, DELETE, ADD, SET, RENAME], RETRIEVE),
    "renameTag": ([], TAG_RENAME),
    "copyTag": ([], TAG_COPY),
    "deleteTag": ([TAG_COPY], TAG_DELETE),
    "RebuildTag (return)": ([EXPORT, on_machine("return", "{root}/out/quote.xml", "--tag", "3")], RETURN),
    "export -o": ([], EXPORT),
    "show --html": ([EXPORT], OTHER_PAGE),
    "case mask -o --table": ([RECORDED], program("case", "mask", "{root}/case", "-o", "{root}/out/masked",
                                                 "--table", "{root}/out/table")),
    "machine create": ([], program("machine", "create", "{machine}")),
    "recording on": ([], on_machine("recording", "on", "{root}/cases")),
}
# What a command does first, which is seen where it was killed behind that.
FIRST_STEPS = {"retrieveProject, new": sent("addProject", projectName="Harbour School")}
# Names and keys are random: the files are whole, and differ from run to run.
RANDOM_OUTPUT = {"case mask -o --table"}


class Place:
    """A machine folder with a folder for outputs, which can be put back as it was."""

    def __init__(self, parvex, root):
        self.parvex, self.root, self.machine = parvex, root, root / "machine"
        (root / "out").mkdir(parents=True)
        self.run(["machine", "create", str(self.machine)])

    def pull(self, file):
        return ["--machine", str(self.machine), "pull", str(self.machine / file)]

    def start(self, arguments):
        return subprocess.Popen([self.parvex, *arguments], stdin=subprocess.DEVNULL, stdout=subprocess.PIPE,
                                stderr=subprocess.STDOUT, start_new_session=True, cwd=self.root)

    def run(self, arguments):
        process = self.start(arguments)
        said = process.communicate()[0].decode("utf-8", "replace")
        return process.returncode, said

    def state(self):
        files = {}
        for folder in (self.machine, self.root / "out"):
            for path in folder.rglob("*"):
                if path.is_file():
                    files[str(path.relative_to(self.root))] = path.read_bytes()
        return files

    def folders(self):
        return {str(path.relative_to(self.root)) for path in self.machine.rglob("*") if path.is_dir()}

    def put_back(self, files, folders):
        for name, bytes_ in self.state().items():
            if files.get(name) != bytes_:
                (self.root / name).unlink()
        for name in sorted(self.folders() - folders, reverse=True):
            shutil.rmtree(self.root / name)
        for name in folders:
            (self.root / name).mkdir(parents=True, exist_ok=True)
        for name, bytes_ in files.items():
            path = self.root / name
            if not path.exists():
                path.write_bytes(bytes_)
                path.chmod(0o755 if path.suffix == ".exe" else 0o644)


def is_left(name):
    return LEFT.search(name) is not None


def known(files):
    return {name: bytes_ for name, bytes_ in files.items() if not is_left(name)}


def entries(bytes_):
    try:
        with zipfile.ZipFile(io.BytesIO(bytes_)) as archive:
            return {archive.read(name) for name in archive.namelist()}
    except (zipfile.BadZipFile, OSError, ValueError):
        return set()


class Watched:
    """One command, and what it may leave."""

    def __init__(self, place, name):
        self.place, self.name = place, name
        prepare, make = COMMANDS[name]
        for step in prepare:
            status, said = place.run(step(place))
            if status != 0:
                raise RuntimeError(f"{name}: what comes before it ended with {status}: {said}")
        if name in RANDOM_OUTPUT:
            shutil.move(next((place.root / "cases").iterdir()), place.root / "case")
        self.arguments = make(place)
        self.before, self.folders = known(place.state()), place.folders()
        self.between = self.hand_overs()
        place.put_back(self.before, self.folders)
        if name in FIRST_STEPS:
            place.run(FIRST_STEPS[name](place))
            self.between.append(known(place.state()))
            place.put_back(self.before, self.folders)
        durations = []
        for _ in range(MEASURED):
            start = time.monotonic()
            status, said = place.run(self.arguments)
            durations.append(time.monotonic() - start)
            if status != 0:
                raise RuntimeError(f"{name} ended with {status}: {said}")
            self.after = known(place.state())
            self.sizes = {path: len(bytes_) for path, bytes_ in self.after.items()}
            self.status_behind = place.run(self.arguments)[0]
            self.behind = known(place.state())
            place.put_back(self.before, self.folders)
        self.duration = statistics.median(durations)
        self.entries = set().union(*(entries(bytes_) for state in (self.before, self.after, *self.between)
                                     for bytes_ in state.values()))

    def hand_overs(self):
        """The files when the workflow program begins and ends, which are between those of the command."""
        workflow = self.place.machine / ROOT / "Bin/kdwfm470.exe"
        aside = self.place.root / "aside"
        real = workflow.read_bytes()
        (workflow.parent / "real.exe").write_bytes(real)
        (workflow.parent / "real.exe").chmod(0o755)
        workflow.write_text(f'#!/bin/sh\nmkdir -p "{aside}"\ncp -r "{self.place.machine}/{TEMP}" "{aside}/1"\n'
                            f'"{workflow.parent}/real.exe" "$@"\nstatus=$?\ncp -r "{self.place.machine}/{TEMP}" "{aside}/2"\n'
                            "exit $status\n")
        workflow.chmod(0o755)
        if self.name != "machine create":
            self.place.run(self.arguments)
        states = [{f"machine/{TEMP}{path.relative_to(aside / part)}": path.read_bytes()
                   for path in (aside / part).rglob("*") if path.is_file()} for part in ("1", "2")]
        shutil.rmtree(aside, ignore_errors=True)
        return states

    def problem_of(self, path, bytes_):
        """Why a file that is found may not be there; None when it may."""
        allowed = [state.get(path) for state in (self.before, *self.between, self.after, self.behind)]
        if bytes_ in allowed or (bytes_ is None and None in allowed):
            return None
        if self.name == "machine create" and bytes_ is None:
            return None
        if bytes_ is None:
            # The hand-over is taken away between two commands, and made anew.
            return None if self.name.startswith("export") and path.startswith("machine/" + TEMP) else f"{path} is gone"
        if self.name.startswith("export") and bytes_ in self.entries:
            return None
        if path.endswith("UIKeys.txt") and bytes_ == self.after[path].replace(b"Active=-1", b"Active=0"):
            return None  # what the builder's windows show is hidden while tags are built
        if self.name == "setProjectProperties" and path.endswith("project.mdb"):
            # Each contact is saved by itself.
            status, said = self.place.run(sent("getProjectProperties", projectName="Harbour")(self.place))
            return None if status == 0 else f"{path} cannot be read: {said}"
        if self.name in RANDOM_OUTPUT and path.startswith("out/"):
            whole = bool(entries(bytes_)) if path.endswith("masked") else bytes_.endswith(b"\n")
            return None if whole else f"{path} is torn"
        return f"{path} is neither old nor new ({len(bytes_)} bytes)" if path in self.sizes or path in self.before \
            else f"{path} is a stranger"

    def problems(self, files):
        found = [problem for path in {*files, *self.before, *self.after}
                 if (problem := self.problem_of(path, files.get(path)))]
        note, blob = files.get(f"machine/{TEMP}input.ini"), files.get(f"machine/{TEMP}QPblob.tmp")
        if note is not None and b"QPblob.tmp" in note and blob is None:
            found.append("input.ini names a blob that is not there")
        return found

    def kill(self, moment):
        """Which files a killed run left, and what is wrong with them."""
        process = self.place.start(self.arguments)
        time.sleep(moment)
        try:
            os.killpg(process.pid, signal.SIGKILL)
        except ProcessLookupError:
            pass
        process.communicate()
        files = known(self.place.state())
        wrong = self.problems(files)
        status, said = self.place.run(self.arguments)
        again = known(self.place.state())
        if self.name in RANDOM_OUTPUT:
            fits = status == 0 and not self.problems(again)
        elif self.name == "renameProject" and again == {**self.before, **self.after}:
            fits = status == 1  # copied and not yet deleted: the project is there under both names
        else:
            fits = (status, again) in ((0, self.after), (self.status_behind, self.behind))
        if not fits:
            differs = [path for path in {*again, *self.after} if again.get(path) != self.after.get(path)]
            wrong.append(f"sent again it ends with {status}, other files: {differs[:5]}: {said[-300:]}")
        elif not self.agree(again):
            wrong.append("the units and the index of tags of a project do not agree")
        outcome = "new" if files == self.after else "old" if files == self.before else "between"
        self.place.put_back(self.before, self.folders)
        return outcome, wrong

    def agree(self, files):
        """Pairs of units and databases are those of one undisturbed run."""
        for path in files:
            if path.endswith("/units.json") and "/Projects/" in path:
                database = path.replace("units.json", "project.mdb")
                pairs = [(state.get(path), state.get(database)) for state in (self.before, self.after, self.behind)]
                if (files[path], files.get(database)) not in pairs:
                    return False
        return True


def work(task):
    parvex, name, kills, seed = task
    random.seed(f"{seed} {name}")
    counts = {"old": 0, "between": 0, "new": 0}
    wrong = []
    with tempfile.TemporaryDirectory() as scratch:
        watched = Watched(Place(parvex, Path(scratch) / "place"), name)
        for number in range(1, kills + 1):
            outcome, problems = watched.kill(random.random() * watched.duration * LONGER)
            counts[outcome] += 1
            if problems:
                wrong.append(f"{name}, kill {number}: {'; '.join(problems)}")
    return name, kills, counts, wrong, watched.duration


def main():
    parvex, kills, seed = str(Path(sys.argv[1]).resolve()), int(sys.argv[2]), int(sys.argv[3])
    names = list(COMMANDS)
    tasks = [(parvex, name, kills // len(names) + (index < kills % len(names)), seed)
             for index, name in enumerate(names)]
    table = f"{'command':28} {'ms':>6} {'kills':>6} {'old':>6} {'between':>8} {'new':>6} {'wrong':>6}"
    print(table, flush=True)
    total = wrong = 0
    with multiprocessing.Pool(os.cpu_count() or 1) as pool:
        for name, count, counts, problems, duration in pool.imap(work, tasks, chunksize=1):
            print(f"{name:28} {duration * 1000:6.0f} {count:6} {counts['old']:6} {counts['between']:8} "
                  f"{counts['new']:6} {len(problems):6}", flush=True)
            for problem in problems[:10]:
                print("  " + problem, flush=True)
            total += count
            wrong += len(problems)
    print(f"{total} kills, seed {seed}: {wrong} were wrong")
    sys.exit(1 if wrong or not total else 0)


if __name__ == "__main__":
    main()
