"""How scripts/lib/count_tests.py adds up test results: nothing that did not run may look like a pass."""

import os
import subprocess
import sys
import tempfile
import unittest

SCRIPT = os.path.join(os.path.dirname(__file__), "..", "..", "scripts", "lib", "count_tests.py")

PASSED = '<testcase name="Good" status="run"><system-out>fine</system-out></testcase>'
FAILED = '<testcase name="Bad" status="fail"><failure message="Failed"/><system-out>no</system-out></testcase>'
SKIPPED = """<testcase name="Oracle" status="notrun"><skipped message="SKIP_REGULAR_EXPRESSION_MATCHED"/><system-out>
[ RUN      ] A.Oracle
jet_test.cpp:5: Skipped
mdb-export is not installed

[  SKIPPED ] A.Oracle (0 ms)
</system-out></testcase>"""
DISABLED = '<testcase name="Later" status="disabled"><skipped message="Disabled"/></testcase>'
MISSING = '<testcase name="Lost" status="notrun"><skipped message="Unable to find executable: x"/></testcase>'


class CountTestsTest(unittest.TestCase):
    def count(self, *cases, options=()):
        with tempfile.TemporaryDirectory() as folder:
            path = os.path.join(folder, "tests.xml")
            with open(path, "w", encoding="utf-8") as file:
                file.write(f"<testsuite>{''.join(cases)}</testsuite>")
            run = subprocess.run([sys.executable, SCRIPT, *options, path, path + ".missing"], capture_output=True,
                                 encoding="utf-8")
        self.lines = run.stdout.splitlines()
        return run.returncode, self.lines[-1]

    def test_all_passed(self):
        self.assertEqual(self.count(PASSED, PASSED), (0, "2 passed, 0 failed"))

    def test_a_failure_is_named_and_fails(self):
        self.assertEqual(self.count(PASSED, FAILED), (1, "1 passed, 1 failed"))
        self.assertTrue(any(line.startswith("failed: Bad (") for line in self.lines))

    def test_a_failure_shows_the_end_of_what_it_said(self):
        self.count(FAILED.replace("no<", "\n".join(f"line {number}" for number in range(100)) + "<"))
        said = [line for line in self.lines if line.startswith("  | ")]
        self.assertEqual((said[0], said[-1], len(said)), ("  | line 70", "  | line 99", 30))

    def test_a_test_whose_program_wine_had_to_start_twice_is_named(self):
        self.count(PASSED.replace("fine", "under_wine: ended with 1 before its first line\nfine"))
        self.assertTrue(any(line.startswith("note: Good (") and "ended with 1 before its first line" in line
                            for line in self.lines), self.lines)

    def test_a_skipped_test_is_named_with_its_reason_and_is_no_pass(self):
        self.assertEqual(self.count(PASSED, SKIPPED), (0, "1 passed, 0 failed, 1 skipped"))
        self.assertTrue(any(line.startswith("skipped: Oracle (") and line.endswith(": mdb-export is not installed")
                            for line in self.lines), self.lines)

    def test_a_disabled_test_is_skipped(self):
        self.assertEqual(self.count(PASSED, DISABLED), (0, "1 passed, 0 failed, 1 skipped"))

    def test_a_test_whose_program_is_missing_fails(self):
        self.assertEqual(self.count(PASSED, MISSING), (1, "1 passed, 1 failed"))

    def test_nothing_to_run_is_no_success(self):
        self.assertEqual(self.count()[0], 1)

    def test_only_skipped_tests_are_no_success(self):
        self.assertEqual(self.count(SKIPPED)[0], 1)

    def test_a_failed_build_counts_as_a_failure(self):
        self.assertEqual(self.count(PASSED, options=("--failed-builds", "1")), (1, "1 passed, 1 failed"))

    def test_what_the_caller_could_not_have_is_said_and_not_counted(self):
        self.assertEqual(self.count(PASSED, options=("--note", "npm", "--note", "lxml")), (0, "1 passed, 0 failed"))
        self.assertIn("skipped: npm", self.lines)
        self.assertIn("skipped: lxml", self.lines)


if __name__ == "__main__":
    unittest.main()
