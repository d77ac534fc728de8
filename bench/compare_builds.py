#!/usr/bin/env python3
"""Compares builds that differ by one thing, on the two jobs that tricks for speed have to pay for.

  compare_builds.py [--rounds N] [--instructions] NAME=BUILD...

The jobs are whole programs: the export of 1,000 tags (with 30 accessories and a blob of 20 KB each), and marking 50,000
tags against 1,000 tools. The builds take turns; each figure is the processor time of a run, user and system. The first
build is what the others are compared with. Instructions are counted by valgrind, in user mode.
"""
import argparse
import os
import re
import statistics
import subprocess
import sys
import tempfile

HERE = os.path.dirname(os.path.abspath(__file__))
sys.path.insert(0, os.path.join(HERE, "export"))
import measure  # noqa: E402

TOOLS = 1000
TAGS = 50_000


def group(number):
    return f"G{number % TOOLS}47"


def write_lists(folder):
    paths = os.path.join(folder, "tags.xml"), os.path.join(folder, "tools.xml")
    with open(paths[0], "w", encoding="ascii") as tags:
        tags.write("<TAGLIST>")
        for i in range(TAGS):
            tags.write(f"<TAG><NAME>Unit {i}</NAME><PDSG>{group(i * 7)}</PDSG><DATATYPE>0</DATATYPE><TAGVERSION>4.71."
                       f"{i % 2}</TAGVERSION><TAGINDEXID>{i}</TAGINDEXID><ID>{i}</ID></TAG>")
        tags.write("</TAGLIST>")
    with open(paths[1], "w", encoding="ascii") as tools:
        tools.write("<Tools>")
        for i in range(TOOLS):
            tools.write(f"<Tool><Name>Tool {i}</Name><Pdsg>{group(i)}</Pdsg><Version>4.71.0</Version></Tool>")
        tools.write("</Tools>")
    return paths


def jobs(build, machine, lists):
    return {"export": measure.export_of(f"{build}/bin/parvex", machine),
            "marking": [f"{build}/bench/mark_tags", *lists]}


def processor_time(command):
    with open(os.devnull, "wb") as out:
        child = os.posix_spawn(command[0], command, os.environ,
                               file_actions=[(os.POSIX_SPAWN_DUP2, out.fileno(), 1)])
        _, status, usage = os.wait4(child, 0)
    if status != 0:
        sys.exit(f"{' '.join(command)} failed")
    return usage.ru_utime + usage.ru_stime


def instructions(command):
    done = subprocess.run(["valgrind", "--tool=callgrind", "--callgrind-out-file=/dev/null", *command],
                          stdout=subprocess.DEVNULL, stderr=subprocess.PIPE, text=True, check=True)
    return int(re.search(r"refs:\s+([\d,]+)", done.stderr)[1].replace(",", ""))


def main():
    parser = argparse.ArgumentParser(description=__doc__, formatter_class=argparse.RawDescriptionHelpFormatter)
    parser.add_argument("--rounds", type=int, default=25)
    parser.add_argument("--instructions", action="store_true")
    parser.add_argument("builds", nargs="+", metavar="NAME=BUILD")
    chosen = parser.parse_args()
    builds = dict(each.split("=", 1) for each in chosen.builds)
    with tempfile.TemporaryDirectory() as folder:
        machine = os.path.join(folder, "machine")
        measure.make_selection(machine, 1000, 30, 20000)
        lists = write_lists(folder)
        commands = {name: jobs(os.path.abspath(build), machine, lists) for name, build in builds.items()}
        for job in ("export", "marking"):
            times = {name: [] for name in builds}
            for _ in range(chosen.rounds):
                for name in builds:
                    times[name].append(processor_time(commands[name][job]))
            counts = {name: instructions(commands[name][job]) for name in builds} if chosen.instructions else {}
            first = next(iter(builds))
            for name in builds:
                best, median = (measured(times[name]) / measured(times[first]) for measured in (min, statistics.median))
                line = (f"{job:8} {name:24} best {min(times[name]) * 1e3:7.1f} ms {100 * best - 100:+6.1f} %   "
                        f"median {statistics.median(times[name]) * 1e3:7.1f} ms {100 * median - 100:+6.1f} %")
                if counts:
                    line += f"   instructions {counts[name] / 1e6:8.1f} M {100 * counts[name] / counts[first] - 100:+6.1f} %"
                print(line, flush=True)


main()
