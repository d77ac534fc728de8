"""A browser without a window, Chromium, cut off from the network."""

import os
import pathlib
import shutil
import subprocess
import sys
import tempfile
import unittest

import dom

SECONDS = 60
NAMES = ("chromium", "chromium-browser", "google-chrome")


def program():
    for name in NAMES:
        found = shutil.which(name)
        if found and subprocess.run([found, "--version"], capture_output=True, timeout=SECONDS).returncode == 0:
            return found
    return None


def main_with_browser():
    """Runs the tests of the calling module with what the command line names. Ends with 77, which ctest counts as
    skipped, where there is no browser."""
    if not program():
        print("skipped: Chromium is not installed, or cannot be started")
        sys.exit(77)
    unittest.main(argv=sys.argv[:1])


def browse(page, size, home, *options):
    """What the browser prints about a page in a window of that size; `home` is a folder of its own."""
    return run(program(), "--headless", "--no-sandbox", "--disable-gpu", "--disable-dev-shm-usage", "--no-first-run",
               "--hide-scrollbars", "--host-resolver-rules=MAP * ~NOTFOUND", f"--user-data-dir={home}",
               f"--window-size={size[0]},{size[1]}", *options, page.as_uri(), environment={"HOME": str(home)})


def opened(page, size, home):
    """The tree that the browser makes of a page."""
    return dom.read(browse(page, size, home, "--dump-dom"))


def folder_of(tests):
    """A new folder for the tests of a class, which goes with them."""
    folder = tempfile.TemporaryDirectory(ignore_cleanup_errors=True)
    tests.addClassCleanup(folder.cleanup)
    return pathlib.Path(folder.name)


def exported_quote(parvex, folder):
    """The quote of a new sample machine, which stays in the folder."""
    quote = folder / "quote.xml"
    run(parvex, "machine", "create", folder / "machine")
    run(parvex, "--machine", folder / "machine", "export", "--project", "Riverside Clinic", "-o", quote)
    return quote


def run(*arguments, status=0, environment=None):
    done = subprocess.run(arguments, capture_output=True, timeout=SECONDS, stdin=subprocess.DEVNULL,
                          env={**os.environ, **(environment or {})})
    if done.returncode != status:
        raise AssertionError(f"{arguments} ended with {done.returncode}\n{done.stderr.decode('utf-8', 'replace')}")
    return done.stdout.decode("utf-8")
