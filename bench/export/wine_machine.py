"""A Wine prefix as the machine of an export by the Windows build, and what its programs cost there.

The processor's time of a program is its own and what the prefix's other processes used meanwhile: the server that stands
for Windows' kernel, and Wine's services. Programs that come and go while it runs are not counted, and an export starts
none."""

import os
import shutil
import subprocess
import sys

import measure


def windows_path(path):
    return "Z:" + os.path.abspath(path).replace("/", "\\")


class Machine:
    """The prefix that WINEPREFIX names; its helpers run, or the first program would wait for them."""

    def __init__(self, build):
        self.build = build
        self.drive_c = os.path.join(os.environ["WINEPREFIX"], "drive_c")
        self.wine = shutil.which("wine")

    def program(self, name, *arguments):
        return [self.wine, os.path.join(self.build, name), *arguments]

    def run_tool(self, *arguments):
        subprocess.run([self.wine, *arguments], stdin=subprocess.DEVNULL, stdout=subprocess.DEVNULL, check=True)

    def install(self, selection):
        """What an export needs besides its files: where the legacy application is, and a message router."""
        self.run_tool("regedit", "/S", windows_path(os.path.join(selection, "registry.reg")))
        self.run_tool("regsvr32", "/s", windows_path(os.path.join(self.build, "bin", "KorvaneSubstitute.dll")))

    def remove(self):
        self.run_tool("regsvr32", "/s", "/u", windows_path(os.path.join(self.build, "bin", "KorvaneSubstitute.dll")))
        shutil.rmtree(os.path.join(self.drive_c, "Korvane"), ignore_errors=True)

    def run(self, command, output):
        """A run with the processor's time of the prefix's other processes in it."""
        before = self.processor_seconds()
        done = measure.run(command, output)
        meanwhile = self.processor_seconds() - before
        return measure.Run(done.seconds, done.peak_bytes, done.processor_seconds + meanwhile)

    def processor_seconds(self):
        """Of the prefix's server and services, since they began."""
        return sum(processor_seconds_of(process) for process in os.listdir("/proc")
                   if process.isdigit() and self.has(process))

    def has(self, process):
        try:
            program = os.path.basename(os.readlink(f"/proc/{process}/exe"))
            if not program.startswith("wine"):
                return False
            with open(f"/proc/{process}/environ", "rb") as environment:
                return f"WINEPREFIX={os.environ['WINEPREFIX']}".encode() in environment.read().split(b"\0")
        except OSError:  # it has ended, or is somebody else's
            return False


def processor_seconds_of(process):
    """To the nanosecond where the kernel says so, else to its clock's tick."""
    try:
        seconds = 0
        for thread in os.listdir(f"/proc/{process}/task"):
            with open(f"/proc/{process}/task/{thread}/schedstat", encoding="ascii") as counted:
                seconds += int(counted.read().split()[0]) / 1e9
        return seconds
    except (FileNotFoundError, ProcessLookupError):
        pass
    try:
        with open(f"/proc/{process}/stat", encoding="utf-8") as counted:
            user, system = counted.read().rpartition(")")[2].split()[11:13]
        return (int(user) + int(system)) / os.sysconf("SC_CLK_TCK")
    except (FileNotFoundError, ProcessLookupError):
        return 0


def lay(selection, drive_c):
    """A copy of the selection's files as they were made: no run finds what another left."""
    target = os.path.join(drive_c, "Korvane")
    shutil.rmtree(target, ignore_errors=True)
    shutil.copytree(os.path.join(selection, "drive_c", "Korvane"), target)


def best(turns, rounds):
    """`turns`: by name, a selection, the drive that it is laid on, and what then runs. By name, the best time and the
    least processor time of the rounds, in which they take turns."""
    runs = {name: [] for name in turns}
    for _ in range(rounds):
        for name, (selection, drive_c, run) in turns.items():
            lay(selection, drive_c)
            runs[name].append(run())
    return {name: measure.best_of(some) for name, some in runs.items()}


def export_turn(machine, selection, reply):
    command = machine.program("bin/parvex.exe", "pull-ngorla", windows_path(os.path.join(selection, "getHybrisXML.xml")))
    return selection, machine.drive_c, lambda: machine.run(command, reply)


def beside_bare_and_native(machine, parvex, work, rounds):
    """An export of 200 tags with 30 accessories and a blob of 20 KB each: by the Windows build, by a bare Windows program,
    and natively."""
    selection, native = (os.path.join(work, name) for name in ("windows200", "native200"))
    measure.make_selection(selection, 200, 30, 20000)
    measure.make_selection(native, 200, 30, 20000)
    reply, bare, native_reply = (os.path.join(work, name + ".xml") for name in ("windows", "bare", "native"))
    bare_command = machine.program("bench/bare_export_windows.exe", windows_path(bare))
    machine.install(selection)
    try:
        runs = best({
            "own": export_turn(machine, selection, reply),
            "bare": (selection, machine.drive_c, lambda: machine.run(bare_command, os.devnull)),
            "native": (selection, os.path.join(native, "drive_c"),
                       lambda: measure.run(measure.export_of(parvex, native), native_reply)),
        }, rounds)
    finally:
        machine.remove()
    measure.refuse_differing(reply, bare)
    measure.refuse_differing(reply, native_reply)
    return runs


def growth(machine, work, small, large, rounds):
    """Runs of two sizes, each (tags, accessories, bytes of a blob)."""
    turns = {}
    for name, size in (("small", small), ("large", large)):
        selection = os.path.join(work, "windows-growth-" + name)
        measure.make_selection(selection, *size)
        turns[name] = export_turn(machine, selection, os.path.join(work, f"windows-growth-{name}.xml"))
    machine.install(selection)
    try:
        runs = best(turns, rounds)
    finally:
        machine.remove()
    return runs["small"], runs["large"]
