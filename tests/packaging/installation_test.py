#!/usr/bin/env python3
"""Installs the build into a folder of its own, works with what is installed there, and builds the Debian package.

Ends with 77, which ctest counts as skipped, where there is no dpkg-deb to look into the package with.
"""

import argparse
import os
import shutil
import subprocess
import sys
import tempfile
import unittest

PROGRAMS = ["bin/parvex", "libexec/parvex/kdwfm470"]
TEXTS = [
    "share/man/man1/parvex.1",
    "share/bash-completion/completions/parvex",
    "share/doc/parvex/README.md",
    "share/doc/parvex/CHANGELOG.md",
    "share/doc/parvex/copyright",
    "share/doc/parvex/docs/README.md",
    "share/doc/parvex/docs/commands/export.md",
]


def run(*arguments, **keywords):
    done = subprocess.run(arguments, capture_output=True, text=True, **keywords)
    if done.returncode != 0:
        raise AssertionError(f"{arguments} ended with {done.returncode}\n{done.stdout}\n{done.stderr}")
    return done.stdout


class Installation(unittest.TestCase):
    def setUp(self):
        folder = tempfile.TemporaryDirectory()
        self.addCleanup(folder.cleanup)
        self.folder = folder.name

    def test_puts_programs_manual_completion_and_documents_in_their_places(self):
        run(options.cmake, "--install", options.build, "--prefix", self.folder)
        for name in PROGRAMS:
            self.assertTrue(os.access(os.path.join(self.folder, name), os.X_OK), name)
        for name in TEXTS:
            self.assertGreater(os.path.getsize(os.path.join(self.folder, name)), 0, name)

    def test_works_from_where_it_is_installed(self):
        run(options.cmake, "--install", options.build, "--prefix", self.folder)
        parvex = os.path.join(self.folder, "bin/parvex")
        machine = os.path.join(self.folder, "machine")
        self.assertEqual(f"parvex {options.version}\n", run(parvex, "--version"))
        run(parvex, "machine", "create", machine)
        quote = run(parvex, "--machine", machine, "export", "--project", "Riverside Clinic")
        self.assertIn("<MARKFOR>RTU-1</MARKFOR>", quote)

    def test_package_holds_the_same_files_and_names_what_it_needs(self):
        if not shutil.which("dpkg-deb"):
            self.skipTest("dpkg-deb is not installed: no Debian package is built")
        run(options.cpack, "--config", os.path.join(options.build, "CPackConfig.cmake"), "-G", "DEB", "-B", self.folder)
        packages = [name for name in os.listdir(self.folder) if name.endswith(".deb")]
        self.assertEqual(1, len(packages), packages)
        package = os.path.join(self.folder, packages[0])
        listed = run("dpkg-deb", "--contents", package)
        for name in PROGRAMS + TEXTS:
            self.assertIn(f" ./usr/{name}\n", listed)
        self.assertNotIn("/include/", listed)
        self.assertEqual("parvex", run("dpkg-deb", "--field", package, "Package").strip())
        self.assertEqual(options.version, run("dpkg-deb", "--field", package, "Version").strip())
        self.assertIn("libxml2", run("dpkg-deb", "--field", package, "Depends"))


if __name__ == "__main__":
    parser = argparse.ArgumentParser()
    for name in ("build", "cmake", "cpack", "version"):
        parser.add_argument(f"--{name}", required=True)
    options = parser.parse_args()
    result = unittest.main(argv=[sys.argv[0]], exit=False).result
    if not result.wasSuccessful():
        sys.exit(1)
    sys.exit(77 if result.skipped else 0)
