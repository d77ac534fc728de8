"""Measures the export beside its peer and its limit, and how it grows. Times and memory are those of whole processes;
each figure is the best of several runs, taken in turn so that all meet the same machine."""

import concurrent.futures
import os
import shutil
import subprocess
import sys
import time
from dataclasses import dataclass

HERE = os.path.dirname(os.path.abspath(__file__))


@dataclass(frozen=True)
class Run:
    seconds: float
    peak_bytes: int
    processor_seconds: float  # user and system


def run(command, output):
    """Runs a program with its standard output in a file. What the kernel says of its peak memory counts ours, which is
    small, too: so nothing that takes much is done in this process."""
    with open(output, "wb") as out:
        start = time.perf_counter()
        child = os.posix_spawn(command[0], command, os.environ,
                               file_actions=[(os.POSIX_SPAWN_OPEN, 0, os.devnull, os.O_RDONLY, 0),
                                             (os.POSIX_SPAWN_DUP2, out.fileno(), 1)])
        _, status, usage = os.wait4(child, 0)
        seconds = time.perf_counter() - start
    if status != 0:
        sys.exit(f"{' '.join(command)} failed")
    return Run(seconds, usage.ru_maxrss * 1024, usage.ru_utime + usage.ru_stime)


def best_of(runs):
    """The best time, the least peak of memory and the least processor time."""
    return Run(min(each.seconds for each in runs), min(each.peak_bytes for each in runs),
               min(each.processor_seconds for each in runs))


def best(commands, rounds):
    """`commands`: by name, a command and its output file. By name, the best of the rounds, in which they take turns."""
    runs = {name: [] for name in commands}
    for _ in range(rounds):
        for name, command in commands.items():
            runs[name].append(run(*command))
    return {name: best_of(some) for name, some in runs.items()}


def make_selection(folder, tags, accessories, blob, further=0):
    shutil.rmtree(folder, ignore_errors=True)
    subprocess.run([sys.executable, os.path.join(HERE, "make_selection.py"), folder, str(tags), str(accessories),
                    str(blob), str(further)], check=True)


def export_of(parvex, folder, *options):
    return [parvex, "--machine", folder, *options, "pull-ngorla", os.path.join(folder, "getHybrisXML.xml")]


def canonical(path):
    from lxml import etree
    return etree.tostring(etree.parse(path), method="c14n")


def say_the_same(one, other):
    return canonical(one) == canonical(other)


def refuse_differing(reply, peer):
    with concurrent.futures.ProcessPoolExecutor(1) as elsewhere:
        if not elsewhere.submit(say_the_same, reply, peer).result():
            sys.exit(f"the export and its peer differ: {reply} {peer}")


@dataclass(frozen=True)
class Comparison:
    own: Run
    peer: Run
    limit: Run
    bytes_in_and_out: int


def size_of_inputs(folder):
    """The selection and the blobs that it names."""
    root = os.path.join(folder, "drive_c", "Korvane", "TQ5-VX")
    blobs = os.scandir(os.path.join(root, "Blobs"))
    return os.path.getsize(os.path.join(root, "Temp", "QBOutput.ini")) + sum(each.stat().st_size for each in blobs)


def beside_peer_and_limit(parvex, limit, work, tags, rounds):
    """An export of `tags` tags with 30 accessories and a blob of 20 KB each."""
    folder = os.path.join(work, f"machine{tags}")
    reply, peer, bound = (os.path.join(work, name) for name in ("reply.xml", "peer.xml", "limit.txt"))
    make_selection(folder, tags, 30, 20000)
    runs = best({
        "own": (export_of(parvex, folder), reply),
        "peer": ([sys.executable, os.path.join(HERE, "peer.py"), folder, peer], os.devnull),
        "limit": ([limit, folder, reply, bound], os.devnull),
    }, rounds)
    refuse_differing(reply, peer)
    return Comparison(**runs, bytes_in_and_out=size_of_inputs(folder) + os.path.getsize(reply))


def beside_recorded(parvex, work, tags, rounds):
    """The same export as it is and recorded, each time into a folder without older cases."""
    folder, cases = os.path.join(work, f"machine{tags}"), os.path.join(work, "cases")
    make_selection(folder, tags, 30, 20000)
    plain, recorded = [], []
    for _ in range(rounds):
        shutil.rmtree(cases, ignore_errors=True)
        plain.append(run(export_of(parvex, folder), os.path.join(work, "plain.xml")))
        recorded.append(run(export_of(parvex, folder, "--record", cases), os.path.join(work, "recorded.xml")))
    if len(os.listdir(cases)) != 1:
        sys.exit("the export was not recorded")
    return best_of(plain), best_of(recorded)


def growth(parvex, work, small, large, rounds):
    """The times of exports of two sizes, each (tags, accessories, bytes of a blob, further entries of a blob). What an
    export writes beside the blobs is there in all rounds but the first."""
    commands = {}
    for name, size in (("small", small), ("large", large)):
        folder = os.path.join(work, "growth-" + name)
        make_selection(folder, *size)
        commands[name] = (export_of(parvex, folder), os.path.join(work, f"growth-{name}.xml"))
    runs = best(commands, rounds)
    return runs["small"].seconds, runs["large"].seconds
