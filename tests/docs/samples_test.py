#!/usr/bin/env python3
"""The samples that cannot be run here, as far as they can be looked at: samples_test.py SOURCES.

- What is written in C# compiles, without a warning; without mono's compiler that is skipped, and so is this test (77).
- The interfaces for .NET are those of the type library: identifiers, members, their order and numbers.
- What is written in Python compiles.
- Every sample stands in samples/README.md, which says whether it was run.
"""

import re
import shutil
import subprocess
import sys
import tempfile
import unittest
from pathlib import Path

SAMPLES = Path(sys.argv[1]) / "samples"
DEFINITION = Path(sys.argv[1]) / "src" / "com" / "parvex.idl"


def without_comments(path):
    return re.sub(r"//[^\n]*", "", path.read_text(encoding="utf-8"))


def defined(kind):
    """Name -> (identifier, members as (number, name)) of what the type library defines."""
    text = without_comments(DEFINITION)
    found = re.findall(r"uuid\(([0-9A-F-]+)\)[^\]]*\]\s*%s (\w+)[^{]*\{(.*?)\n\}" % kind, text, re.DOTALL)
    return {name: (identifier, re.findall(r"\[id\((\d+)\)\] HRESULT (\w+)\(", body)) for identifier, name, body in found}


def for_dotnet(kind):
    text = without_comments(SAMPLES / "ParvexInterop.cs")
    found = re.findall(r'Guid\("([0-9A-F-]+)"\)[^\]]*\]\s*public %s (\w+)\s*\{(.*?)\n    \}' % kind, text, re.DOTALL)
    members = r"\[DispId\((\d+)\)\]\s*(?:\[return: [^\]]*\]\s*)?[\w\[\]]+ (\w+)\("
    return {name: (identifier, re.findall(members, body)) for identifier, name, body in found}


class Samples(unittest.TestCase):
    def test_in_c_sharp_compile_without_a_warning(self):
        compiler = shutil.which("mcs")
        if compiler is None:
            self.skipTest("mcs is not installed: the samples in C# are not compiled")
        for sources in (["quote.cs"], ["quote_early_bound.cs", "ParvexInterop.cs"]):
            with tempfile.TemporaryDirectory() as folder:
                done = subprocess.run([compiler, "-warnaserror", "-r:Microsoft.CSharp", "-r:System.Xml",
                                       f"-out:{folder}/sample.exe", *(str(SAMPLES / name) for name in sources)],
                                      capture_output=True, text=True)
                self.assertEqual(0, done.returncode, done.stdout + done.stderr)

    def test_interfaces_for_dotnet_are_those_of_the_type_library(self):
        interfaces, classes = for_dotnet("interface"), for_dotnet("class")
        self.assertEqual({"ILegacyORLAPull", "IcBinEncoder"}, set(interfaces))
        self.assertEqual({"LegacyORLAPull", "cBinEncoder"}, set(classes))
        for found, kind in ((interfaces, "interface"), (classes, "coclass")):
            for name, written in found.items():
                self.assertEqual(defined(kind)[name], written, name)
        self.assertEqual(6, len(interfaces["IcBinEncoder"][1]))

    def test_in_python_compile(self):
        for path in SAMPLES.glob("*.py"):
            compile(path.read_text(encoding="utf-8"), str(path), "exec")

    def test_all_stand_in_the_list_with_whether_they_were_run(self):
        rows = re.findall(r"^\| (`.*?) \|.*\| (.*?) \|$", (SAMPLES / "README.md").read_text(encoding="utf-8"), re.MULTILINE)
        listed = {name: told for names, told in rows for name in re.findall(r"`([^`]+)`", names)}
        self.assertEqual({path.name for path in SAMPLES.iterdir() if path.suffix not in (".md", ".txt")}, set(listed))
        for name, told in listed.items():
            self.assertRegex(told, "run|compiled", name)


if __name__ == "__main__":
    result = unittest.main(argv=[sys.argv[0]], exit=False).result
    if not result.wasSuccessful():
        sys.exit(1)
    sys.exit(77 if result.skipped else 0)
