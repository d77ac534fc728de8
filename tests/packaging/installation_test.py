#!/usr/bin/env python3
"""Installs the build into a folder of its own, works with what is installed there, and builds the Debian package.

Ends with 77, which ctest counts as skipped, where there is no dpkg-deb to look into the package with, or no lintian.
"""

import argparse
import atexit
import functools
import gzip
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
# What has another name in a package, where Debian wants it compressed.
IN_PACKAGE = {"share/man/man1/parvex.1": "share/man/man1/parvex.1.gz"}


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
        package = self.make_package()
        listed = run("dpkg-deb", "--contents", package)
        for name in PROGRAMS + TEXTS:
            self.assertIn(f" ./usr/{IN_PACKAGE.get(name, name)}\n", listed)
        self.assertNotIn("/include/", listed)
        self.assertEqual("parvex", field(package, "Package"))
        self.assertEqual(options.version, field(package, "Version").partition("-")[0])
        self.assertIn("libxml2", field(package, "Depends"))

    def test_package_of_a_later_debian_is_a_later_version(self):
        version = field(self.make_package(), "Version")
        with open("/etc/os-release", encoding="utf-8") as file:
            release = dict(line.rstrip().replace('"', "").split("=", 1) for line in file if "=" in line)
        if release["ID"] != "debian" or "VERSION_ID" not in release:
            self.skipTest("this is no released Debian")
        self.assertEqual(f"{options.version}-1~deb{release['VERSION_ID']}", version)
        run("dpkg", "--compare-versions", f"{options.version}-1~deb12", "lt", f"{options.version}-1~deb13")

    def test_package_has_what_debian_asks_of_each(self):
        package = self.make_package()
        self.assertEqual("utils", field(package, "Section"))
        self.assertIn("@", field(package, "Maintainer"))
        self.assertGreater(len(field(package, "Description").splitlines()), 3)
        run("dpkg-deb", "--extract", package, self.folder)
        documents = os.path.join(self.folder, "usr/share/doc/parvex")
        with open(os.path.join(documents, "copyright"), encoding="utf-8") as file:
            self.assertIn("Copyright (c)", file.read())
        with gzip.open(os.path.join(documents, "changelog.Debian.gz"), "rt", encoding="utf-8") as file:
            self.assertEqual(f"parvex ({field(package, 'Version')})", file.readline().partition(") ")[0] + ")")
        with gzip.open(os.path.join(self.folder, "usr/share/man/man1/parvex.1.gz"), "rt", encoding="utf-8") as file:
            self.assertIn(".TH", file.read())

    def test_lintian_finds_no_error_in_the_package(self):
        if not shutil.which("lintian"):
            self.skipTest("lintian is not installed: the package is not looked at as Debian does")
        package = self.make_package()
        done = subprocess.run(["lintian", "--allow-root", "--fail-on", "error", package], capture_output=True, text=True)
        self.assertEqual(0, done.returncode, done.stdout + done.stderr)

    def make_package(self):
        if not shutil.which("dpkg-deb"):
            self.skipTest("dpkg-deb is not installed: no Debian package is built")
        packages = made_packages()
        self.assertEqual(1, len(packages), packages)
        return packages[0]


@functools.cache
def made_packages():
    folder = tempfile.TemporaryDirectory()
    atexit.register(folder.cleanup)
    run(options.cpack, "--config", os.path.join(options.build, "CPackConfig.cmake"), "-G", "DEB", "-B", folder.name)
    return [os.path.join(folder.name, name) for name in os.listdir(folder.name) if name.endswith(".deb")]


def field(package, name):
    return run("dpkg-deb", "--field", package, name).strip()


if __name__ == "__main__":
    parser = argparse.ArgumentParser()
    for name in ("build", "cmake", "cpack", "version"):
        parser.add_argument(f"--{name}", required=True)
    options = parser.parse_args()
    result = unittest.main(argv=[sys.argv[0]], exit=False).result
    if not result.wasSuccessful():
        sys.exit(1)
    sys.exit(77 if result.skipped else 0)
