"""When scripts/lib/under_wine starts a test program again: when it never began, once, and said so."""

import os
import subprocess
import tempfile
import unittest

SCRIPT = os.path.abspath(os.path.join(os.path.dirname(__file__), "..", "..", "scripts", "lib", "under_wine"))

# Stands for wine: does what its arguments say, one a start, and counts the starts.
WINE = """#!/bin/bash
starts=$(cat "$STARTS" 2>/dev/null || true)
echo "${starts}x" >"$STARTS"
echo "wine's own words" >&2
turn=$((${#starts} + 1))
bash -c "${!turn}"
"""


class UnderWineTest(unittest.TestCase):
    def under_wine(self, *turns):
        with tempfile.TemporaryDirectory() as folder:
            wine = os.path.join(folder, "wine")
            with open(wine, "w", encoding="utf-8") as file:
                file.write(WINE)
            os.chmod(wine, 0o755)
            starts = os.path.join(folder, "starts")
            path = folder + os.pathsep + os.environ["PATH"]
            run = subprocess.run([SCRIPT, *turns], capture_output=True, encoding="utf-8",
                                 env=dict(os.environ, PATH=path, STARTS=starts, TMPDIR=folder))
            with open(starts, encoding="utf-8") as file:
                self.starts = len(file.read().strip())
            self.assertEqual(sorted(os.listdir(folder)), ["starts", "wine"], "nothing is left behind")
        return run

    def test_a_program_that_succeeds_is_started_once_and_wine_is_quiet(self):
        run = self.under_wine("echo ok", "exit 5")
        self.assertEqual((run.returncode, run.stdout, run.stderr, self.starts), (0, "ok\n", "", 1))

    def test_a_program_that_succeeds_without_a_word_is_started_once(self):
        self.assertEqual((self.under_wine("true", "exit 5").returncode, self.starts), (0, 1))

    def test_a_program_that_failed_after_its_first_line_is_not_started_again(self):
        run = self.under_wine("echo begun; exit 3", "echo again")
        self.assertEqual((run.returncode, run.stdout, self.starts), (3, "begun\n", 1))
        self.assertEqual(run.stderr, "wine's own words\n")

    def test_a_program_that_never_began_is_started_once_more_which_is_said(self):
        run = self.under_wine("exit 3", "echo begun")
        self.assertEqual((run.returncode, run.stdout, self.starts), (0, "begun\n", 2))
        self.assertIn("under_wine: ended with 3 before its first line", run.stderr)

    def test_a_program_that_never_begins_fails(self):
        self.assertEqual((self.under_wine("exit 3", "exit 4", "echo begun").returncode, self.starts), (4, 2))

    def test_a_crash_is_a_failure(self):
        self.assertNotEqual(self.under_wine("echo begun; kill -SEGV $$").returncode, 0)


if __name__ == "__main__":
    unittest.main()
