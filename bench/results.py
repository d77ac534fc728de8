#!/usr/bin/env python3
"""Runs every measurement and prints the table of ratios: ours beside the peer and the limit of the same run, and what
the project promises. Nothing is tested here: a promise that is not met is no failure of this program.

  results.py BUILD_FOLDER WORK_FOLDER [RESULTS.md] (--windows BUILD_FOLDER | --no-windows REASON)

RESULTS.md gets the table, too. The rows of Windows need a build for Windows, and WINEPREFIX to name a Wine prefix whose
helpers run; else they are skipped for that reason.
"""

import argparse
import datetime
import json
import os
import re
import subprocess
import sys

HERE = os.path.dirname(os.path.abspath(__file__))
sys.path[:0] = [HERE, os.path.join(HERE, "export")]

import measure
import surroundings
import windows_rows
from table import Figure, Promise, Row, markdown

# Ten times the work may take twelve times as long.
GROWTH = 1.2


def lines_of(*command):
    return subprocess.run(command, stdout=subprocess.PIPE, text=True, check=True).stdout.splitlines()


def benchmarks(program, names="."):
    """By name, the milliseconds of the best of several runs, which take turns."""
    said = lines_of(program, "--benchmark_format=json", "--benchmark_filter=" + names, "--benchmark_repetitions=5",
                    "--benchmark_enable_random_interleaving=true", "--benchmark_min_time=0.05")
    in_ms = {"ns": 1e-6, "us": 1e-3, "ms": 1, "s": 1e3}
    best = {}
    runs = [run for run in json.loads("\n".join(said))["benchmarks"] if run["run_type"] == "iteration"]
    for run in sorted(runs, key=lambda run: (run["family_index"], run["per_family_instance_index"])):
        # What is timed by hand is given as real time; elsewhere the processor's counts, which others do not lengthen.
        name, by_hand = re.subn("/manual_time$", "", run["run_name"])
        ms = run["real_time" if by_hand else "cpu_time"] * in_ms[run["time_unit"]]
        best[name] = min(ms, best.get(name, ms))
    return best


def base64_rows(build):
    ms = benchmarks(f"{build}/bench/base64_bench", "/(codec|plain_loop|plain_lenient_loop|memcpy)$")
    figure = lambda name, whose="": Figure(ms[name], "ms", whose)
    megabyte, clean = "encode/1048576", "decode/clean_1048576"
    copied = figure(clean + "/memcpy", "memcpy")
    rows = [
        Row("Base64: encode 1 MB", figure(megabyte + "/codec"), figure(megabyte + "/plain_loop", "plain table loop"),
            figure(megabyte + "/memcpy", "memcpy"), Promise("peer", 5)),
        Row("Base64: decode 1 MB, clean", figure(clean + "/codec"), figure(clean + "/plain_loop", "plain table loop"),
            copied, Promise("peer", 5)),
        Row("Base64: decode 1 MB, clean", figure(clean + "/codec"),
            figure(clean + "/plain_lenient_loop", "lenient byte loop"), copied, Promise("peer", 5)),
    ]
    for name in (name for name in ms if re.fullmatch(r"decode/(?!clean_).*/codec", name)):
        case = name.split("/")[1]
        rows.append(Row("Base64: decode 1 MB, " + case.replace("_", " "), figure(name),
                        figure(f"decode/{case}/plain_lenient_loop", "lenient byte loop"), copied,
                        Promise("peer", 6 if case == "lines_of_76" else 0.9)))
    return rows


INI_LINE = re.compile(r"(\S+) +([\d.]+) MB.*?read\+line ends +([\d.]+) ms +read\+parse +([\d.]+) ms.*"
                      r"in order +([\d.]+) ns, at random +([\d.]+) ns")
INI_PEER_LINE = re.compile(r"(\S+) +dictionary +read\+parse +([\d.]+) ms +look-up +([\d.]+) ns")


def ini_rows(build, work):
    folder = os.path.join(work, "ini")
    own = [INI_LINE.match(line) for line in lines_of(f"{build}/bench/ini_bench", folder)]
    peers = map(INI_PEER_LINE.match, lines_of(sys.executable, os.path.join(HERE, "ini_peer.py"), folder))
    peer = {found[1]: (float(found[2]), float(found[3])) for found in peers if found}
    rows = []
    for name, size, line_ends, parse, in_order, at_random in (found.groups() for found in own):
        promised = float(size) >= 10
        parse_peer, look_up_peer = peer[name]
        python = "Python with a dictionary"
        what = f"ini, {name}, {float(size):.2g} MB: "
        rows += [
            Row(what + "read and parse", Figure(float(parse), "ms"), Figure(parse_peer, "ms", python),
                Figure(float(line_ends), "ms", "read and find line ends"), Promise("limit", 4)),
            Row(what + "look-up in the file's order", Figure(float(in_order), "ns"), None, None,
                Promise("own", 200) if promised else None),
            Row(what + "look-up at random", Figure(float(at_random), "ns"), Figure(look_up_peer, "ns", python), None,
                Promise("own", 300, 150) if promised else None),
        ]
    return rows


XML_LINE = re.compile(r"(.*?) +([\d.]+) ms +([\d.]+) ms +x [\d.]+$")


def xml_rows(build):
    rows = []
    said = map(XML_LINE.match, lines_of(f"{build}/bench/xml_bench"))
    for what, own, library in (found.groups() for found in said if found):
        case, _, peer = what.rstrip(")").partition(" (library: ")
        bound = 1 if peer == "xmlTextWriter" else 2 if case.startswith("write what") else None
        rows.append(Row("XML, 1,000 units with 30 components: " + case, Figure(float(own), "ms"),
                        Figure(float(library), "ms", "libxml2" + (", " + peer if peer else "")), None,
                        Promise("peer", bound) if bound else None))
    if len(rows) < 6:
        sys.exit("xml_bench says something else than expected")
    return rows


def export_rows(build, work):
    parvex, limit = f"{build}/bin/parvex", f"{build}/bench/export_limit"
    ms = lambda run, whose="": Figure(run.seconds * 1e3, "ms", whose)
    rows = []
    for tags, rounds, promise in ((200, 21, Promise("peer", 2.5, 4)), (1000, 21, Promise("limit", 2.4, 2))):
        compared = measure.beside_peer_and_limit(parvex, limit, work, tags, rounds)
        rows.append(Row(f"export of {tags:,} tags with 30 accessories and a 20 KB blob", ms(compared.own),
                        ms(compared.peer, "Python with lxml"), ms(compared.limit, "read, encode, append, write"), promise))
    rows.append(Row("export of 1,000 tags: peak memory", Figure(compared.own.peak_bytes / 1e6, "MB"),
                    Figure(compared.peer.peak_bytes / 1e6, "MB", "Python with lxml"),
                    Figure(compared.bytes_in_and_out / 1e6, "MB", "input and output"), Promise("limit", 2.2, 1.5)))
    plain, recorded = measure.beside_recorded(parvex, work, 200, 21)
    rows.append(Row("export of 200 tags with 30 accessories and a 20 KB blob, recorded", ms(recorded), None,
                    ms(plain, "not recorded"), Promise("limit", 1.3)))
    for what, small, large in (("5,000 tags", (500, 30, 2000), (5000, 30, 2000)),
                               ("32,000 components in one unit", (1, 3200, 2000), (1, 32000, 2000)),
                               ("2,000 tags whose blobs have a further entry", (200, 30, 2000, 1), (2000, 30, 2000, 1))):
        seconds = measure.growth(parvex, work, small, large, 5)
        rows.append(Row(f"export of {what}", Figure(seconds[1] * 1e3, "ms"), None,
                        Figure(seconds[0] * 1e3, "ms", "a tenth of them"), Promise("limit", 10 * GROWTH, 10.5)))
    return rows


def tag_rows(build):
    marking = benchmarks(f"{build}/bench/tag_marking_bench")
    naming = benchmarks(f"{build}/bench/unique_names_bench")
    own = Figure(marking["MarkUpToDate/50000"], "ms")
    named = Figure(naming["MakeUniqueTagName/5000"], "ms")
    return [
        Row("marking 50,000 tags against 1,000 tools", own,
            Figure(marking["MarkByWalking/50000"], "ms", "all tools for every tag"),
            Figure(marking["Parse/50000"], "ms", "parse the list"), Promise("limit", 2)),
        Row("marking 50,000 tags", own, None, Figure(marking["MarkUpToDate/12500"], "ms", "a quarter of them"),
            Promise("limit", 4.6, 4.2)),
        Row("making 5,000 clashing names unique", named,
            Figure(naming["PlainRecursion/5000"], "ms", "plain recursion"), None, None),
        Row("making 5,000 clashing names unique", named, None,
            Figure(naming["MakeUniqueTagName/1250"], "ms", "a quarter of them"), Promise("limit", 4 * GROWTH)),
    ]


PREFACE = """# Measured

What `scripts/bench` found in one run on one machine. Times differ from machine to machine; the ratios are what to look
at, and what the project promises. The peer does the same work in another way; the limit does less than the work needs.
[How each is measured](../docs/speed.md).

"""


def listed(facts):
    return "".join(f"- {name}: {value or 'unknown'}\n" for name, value in facts)


def document(rows, build, machine):
    today = datetime.datetime.now(datetime.timezone.utc).date().isoformat()
    run = [("Date", today), ("Commit", surroundings.commit_of(HERE))]
    return PREFACE + listed(run + machine + surroundings.of_software(build)) + "\n" + markdown(rows)


def windows_rows_of(windows, no_windows, build, work):
    if windows:
        return windows_rows.measured(os.path.abspath(windows), build, work)
    rows = windows_rows.skipped(no_windows)
    for row in rows:
        print(f"skipped: {row.what} ({row.skipped})", file=sys.stderr, flush=True)
    return rows


def main(build, work, results=None, windows=None, no_windows=None):
    build, work = os.path.abspath(build), os.path.abspath(work)
    os.makedirs(work, exist_ok=True)
    machine = surroundings.of_machine()
    rows = []
    for what, measured in (("Base64", lambda: base64_rows(build)), ("ini files", lambda: ini_rows(build, work)),
                           ("XML", lambda: xml_rows(build)), ("tags", lambda: tag_rows(build)),
                           ("the export", lambda: export_rows(build, work)),
                           ("Windows", lambda: windows_rows_of(windows, no_windows, build, work))):
        print(f"Measuring {what} ...", file=sys.stderr, flush=True)
        rows += measured()
    print(markdown(rows))
    promised = [row for row in rows if row.promise]
    missed = [row.what for row in promised if not row.promise.is_met(row)]
    skipped = sum(1 for row in rows if row.skipped)
    print(f"{len(promised) - len(missed)} promises met, {len(missed)} not" +
          (f", {skipped} rows skipped" if skipped else "") + "".join(f"\n  {what}" for what in missed))
    if results:
        with open(results, "w", encoding="utf-8") as file:
            file.write(document(rows, build, machine))


def arguments():
    parser = argparse.ArgumentParser(usage=__doc__)
    parser.add_argument("build")
    parser.add_argument("work")
    parser.add_argument("results", nargs="?")
    where = parser.add_mutually_exclusive_group(required=True)
    where.add_argument("--windows")
    where.add_argument("--no-windows")
    return parser.parse_args()


if __name__ == "__main__":
    main(**vars(arguments()))
