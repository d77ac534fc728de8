"""How scripts/lib/check_format.py looks at the sources, with programs of this test in the place of clang-format."""

import os
import shutil
import subprocess
import sys
import tempfile
import unittest

SCRIPT = os.path.join(os.path.dirname(__file__), "..", "..", "scripts", "lib", "check_format.py")

# Says of every file that has a tab in it what clang-format says of a line that it would write otherwise.
PROGRAM = """#!/bin/sh
if [ "$1" = --version ]; then echo "Debian clang-format version VERSION.0.6"; exit; fi
shift
for file; do
  ! grep -q "$(printf '\\t')" "$file" || echo "$file:1:1: warning: code should be clang-formatted" >&2
done
"""


class CheckFormatTest(unittest.TestCase):
    def check(self, version, sources):
        with tempfile.TemporaryDirectory() as folder:
            programs = os.path.join(folder, "programs")
            os.mkdir(programs)
            for name in ["sh", "grep", "printf"]:
                os.symlink(shutil.which(name), os.path.join(programs, name))
            if version:
                path = os.path.join(programs, "clang-format")
                with open(path, "w", encoding="utf-8") as file:
                    file.write(PROGRAM.replace("VERSION", version))
                os.chmod(path, 0o755)
            for name, text in sources.items():
                path = os.path.join(folder, name)
                os.makedirs(os.path.dirname(path), exist_ok=True)
                with open(path, "w", encoding="utf-8") as file:
                    file.write(text)
            run = subprocess.run([sys.executable, SCRIPT, folder], capture_output=True, encoding="utf-8",
                                 env={"PATH": programs})
        return run.returncode, run.stdout

    def test_formatted_sources_pass(self):
        self.assertEqual(self.check("14", {"src/a.cpp": "int a;\n", "tests/b/c.h": "int c;\n"}),
                         (0, "2 sources looked at\n"))

    def test_each_source_that_is_formatted_otherwise_is_named(self):
        status, said = self.check("14", {"src/a.cpp": "int a;\n", "src/b/b.cpp": "\tint b;\n", "fuzz/c.h": "\tint c;\n"})
        self.assertEqual(status, 1)
        self.assertEqual(said.splitlines(), ["fuzz/c.h is formatted otherwise: clang-format -i",
                                             "src/b/b.cpp is formatted otherwise: clang-format -i",
                                             "3 sources looked at"])

    def test_another_version_is_told_and_checks_nothing(self):
        self.assertEqual(self.check("19", {"src/a.cpp": "\tint a;\n"}),
                         (77, "check_format.py: Skipped\nclang-format is version 19, not 14: "
                              "the format of the sources is not checked\n"))

    def test_without_the_program_nothing_is_checked(self):
        status, said = self.check(None, {"src/a.cpp": "\tint a;\n"})
        self.assertEqual(status, 77)
        self.assertIn("clang-format is not installed", said)

    def test_no_sources_are_no_success(self):
        self.assertEqual(self.check("14", {})[0], 1)


if __name__ == "__main__":
    unittest.main()
