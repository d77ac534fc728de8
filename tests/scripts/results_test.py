"""What bench/results.py makes of the lines of the measuring programs, and how a promise is judged."""

import contextlib
import io
import os
import stat
import sys
import tempfile
import unittest

sys.path.insert(0, os.path.join(os.path.dirname(__file__), "..", "..", "bench"))

import results
from table import Figure, Promise, Row, markdown


def program(folder, name, *lines):
    """A program that says these lines."""
    path = os.path.join(folder, "bench", name)
    os.makedirs(os.path.dirname(path), exist_ok=True)
    with open(path, "w", encoding="utf-8") as file:
        file.write("#!/bin/sh\ncat <<'END'\n" + "\n".join(lines) + "\nEND\n")
    os.chmod(path, stat.S_IRWXU)
    return path


class PromiseTest(unittest.TestCase):
    def verdict(self, promise, own=10, peer=10, limit=10):
        return Row("x", Figure(own, "ms"), Figure(peer, "ms", "p"), Figure(limit, "ms", "l"), promise).verdict

    def test_is_of_the_peers_time_in_ours(self):
        self.assertEqual(self.verdict(Promise("peer", 5), peer=50), "yes")
        self.assertEqual(self.verdict(Promise("peer", 5), peer=49), "**no**")

    def test_is_of_our_time_in_the_limits(self):
        self.assertEqual(self.verdict(Promise("limit", 3), own=30), "yes")
        self.assertEqual(self.verdict(Promise("limit", 3), own=31), "**no**")

    def test_is_of_our_own_figure(self):
        self.assertEqual(self.verdict(Promise("own", 10)), "yes")
        self.assertEqual(self.verdict(Promise("own", 9)), "**no**")

    def test_is_named_with_its_aim_in_the_table(self):
        table = markdown([Row("x", Figure(20, "ms"), None, Figure(10, "ms", "copy"), Promise("limit", 3, 2)),
                          Row("y", Figure(1234, "ns"))])
        self.assertRegex(table, r"\| x +\| 20.0 ms +\| +\| +\| copy: 10.0 ms +\| 2.00 +"
                                r"\| at most 3 times the limit, aim 2 \| yes +\|")
        self.assertRegex(table, r"\| y +\| 1,234 ns +(\| +){6}\|")

    def test_is_judged_by_the_clock_beside_which_the_processors_time_stands(self):
        row = Row("x", Figure(300, "ms", processor=500), None, Figure(100, "ms", "bare", 125), Promise("limit", 3.5))
        self.assertEqual(row.verdict, "yes")
        self.assertRegex(markdown([row]), r"\| 300 ms \(processor 500\) \|.*\| bare: 100 ms \(processor 125\) +"
                                          r"\| 3.00 \(processor 4.00\) +\|")


class ProgramsTest(unittest.TestCase):
    def setUp(self):
        self.folder = tempfile.TemporaryDirectory()
        self.addCleanup(self.folder.cleanup)

    def test_the_best_of_the_runs_counts(self):
        one = ('{"run_type":"iteration","run_name":"a/1","family_index":0,"per_family_instance_index":0,'
               '"real_time":9,"cpu_time":%d,"time_unit":"us"}')
        by_hand = ('{"run_type":"iteration","run_name":"b/manual_time","family_index":1,'
                   '"per_family_instance_index":0,"real_time":3,"cpu_time":8,"time_unit":"ms"}')
        mean = '{"run_type":"aggregate","run_name":"a/1","cpu_time":1}'
        path = program(self.folder.name, "some", '{"benchmarks":[' + ",".join((one % 5, one % 4, by_hand, mean)) + "]}")
        self.assertEqual(results.benchmarks(path), {"a/1": 0.004, "b": 3})

    def test_lines_of_xml_bench(self):
        program(self.folder.name, "xml_bench", "1000 units, 30 components each, 11.5 MB",
                "                     seam      library   library / seam",
                "write what was built (library: xmlNodeDump)      10.00 ms     35.00 ms   x 3.50",
                "build, write, free (library: xmlTextWriter)      100.00 ms    90.00 ms   x 0.90",
                *["parse and free                                   9.00 ms      9.00 ms   x 1.00"] * 4,
                "one selection in a component: 0.25 us")
        rows = results.xml_rows(self.folder.name)
        self.assertEqual([row.verdict for row in rows], ["yes", "**no**", "", "", "", ""])
        self.assertEqual(rows[0].peer, Figure(35, "ms", "libxml2, xmlNodeDump"))

    def test_other_lines_of_xml_bench_are_an_error(self):
        program(self.folder.name, "xml_bench", "parse and free: 9 ms")
        with self.assertRaisesRegex(SystemExit, "something else than expected"):
            results.xml_rows(self.folder.name)


class WindowsRowsTest(unittest.TestCase):
    def test_are_named_with_the_reason_where_they_are_skipped(self):
        said = io.StringIO()
        with contextlib.redirect_stderr(said):
            rows = results.windows_rows_of(None, "not installed: wine", "build", "work")
        self.assertRegex(said.getvalue(), r"(?m)^skipped: Windows: marking 50,000 tags .* \(not installed: wine\)$")
        self.assertEqual(len(said.getvalue().splitlines()), len(rows))
        self.assertRegex(markdown(rows), r"\| Windows: export of 200 tags .*\| skipped: not installed: wine +(\| +){6}\|")
        self.assertFalse(any(row.promise for row in rows))


if __name__ == "__main__":
    unittest.main()
