"""The rows of the Windows build, under Wine."""

import os
import re
import subprocess
import sys

import wine_machine
from table import Figure, Promise, Row

EXPORT = "Windows: export of 200 tags with 30 accessories and a 20 KB blob"
GROWN = (("2,000 tags with 30 accessories and a 20 KB blob", (200, 30, 20000), (2000, 30, 20000)),
         ("32,000 components in one unit", (1, 3200, 2000), (1, 32000, 2000)))
MARKING = "Windows: marking 50,000 tags against 1,000 tools"
MARKING_LINE = re.compile(r"50000 tags, ms: mark ([\d.]+) \(processor ([\d.]+)\), "
                          r"parse ([\d.]+) \(processor ([\d.]+)\)\s*$")


def skipped(reason):
    """The same rows where they cannot be measured."""
    return [Row(what, skipped=reason)
            for what in (EXPORT, *(f"Windows: export of {what}" for what, _, _ in GROWN), MARKING)]


def figure(run, whose=""):
    return Figure(run.seconds * 1e3, "ms", whose, run.processor_seconds * 1e3)


def measured(windows_build, build, work):
    machine = wine_machine.Machine(windows_build)
    return export_rows(machine, f"{build}/bin/parvex", work) + [marking_row(machine)]


def export_rows(machine, parvex, work):
    runs = wine_machine.beside_bare_and_native(machine, parvex, work, 11)
    own = figure(runs["own"])
    rows = [Row(EXPORT, own, None, figure(runs["bare"], "a bare program"), Promise("limit", 3, 1.5)),
            Row(EXPORT, own, None, figure(runs["native"], "our native export"), Promise("limit", 15, 8))]
    for what, small, large in GROWN:
        tenth, whole = wine_machine.growth(machine, work, small, large, 5)
        rows.append(Row(f"Windows: export of {what}", figure(whole), None, figure(tenth, "a tenth of them"),
                        Promise("limit", 12, 10.5)))
    return rows


def marking_row(machine):
    said = subprocess.run(machine.program("bench/tag_marking_windows.exe", "50000", "5"), stdin=subprocess.DEVNULL,
                          stdout=subprocess.PIPE, text=True, check=True).stdout
    found = MARKING_LINE.match(said)
    if not found:
        sys.exit(f"tag_marking_windows says something else than expected: {said}")
    mark, mark_processor, parse, parse_processor = map(float, found.groups())
    return Row(MARKING, Figure(mark, "ms", processor=mark_processor), None,
               Figure(parse, "ms", "parse the list", parse_processor), Promise("limit", 3, 1.5))
