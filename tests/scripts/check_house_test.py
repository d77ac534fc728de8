#!/usr/bin/env python3
"""Tests of scripts/lib/check_house.py on a small tree of its own, and that it finds something to look at in this one."""
import pathlib
import sys
import tempfile
import unittest

HERE = pathlib.Path(__file__).resolve().parent
sys.dont_write_bytecode = True
sys.path.insert(0, str(HERE.parent.parent / "scripts" / "lib"))

import check_house  # noqa: E402

USES = ("src/low\tlow\t\t\n"
        "src/middle\tmiddle\t\tlow;ZLIB::ZLIB\n"
        "src/for_windows\tfor_windows\twindows\tlow\n"
        "\tboth\t\tlow;middle\n"
        "src/high\thigh\t\tboth\n"
        "bench/one.cpp\t\t\thigh\n")


class Uses(unittest.TestCase):
    def setUp(self):
        folder = tempfile.TemporaryDirectory()
        self.addCleanup(folder.cleanup)
        self.top = pathlib.Path(folder.name)
        for folder in check_house.FOLDERS:
            (self.top / folder).mkdir()
        self.write("src/low/low.h")
        self.write("src/middle/middle.h")
        self.write("src/high/high.h")

    def write(self, path, *lines):
        (self.top / path).parent.mkdir(exist_ok=True)
        (self.top / path).write_text("\n".join(lines) + "\n", encoding="utf-8")

    def problems(self, uses=USES):
        return check_house.check(self.top, uses)[1]

    def test_an_arrow_down_is_no_problem(self):
        self.write("src/middle/middle.cpp", '#include "middle/middle.h"', '#include "low/low.h"', "#include <string>")
        self.assertEqual(self.problems(), [])

    def test_an_arrow_up_is_told_with_file_and_line(self):
        self.write("src/low/low.cpp", "", '#include "middle/middle.h"')
        self.assertEqual(self.problems(), ["src/low/low.cpp:2: includes middle/middle.h, but the build declares no use of "
                                           "src/middle there"])

    def test_what_a_used_folder_uses_is_not_used(self):
        self.write("bench/one.cpp", '#include "high/high.h"', '#include "low/low.h"')
        self.assertEqual(len(self.problems()), 1)

    def test_a_group_gives_its_members(self):
        self.write("src/high/high.cpp", '#include "low/low.h"', '#include "middle/middle.h"')
        self.assertEqual(self.problems(), [])

    def test_a_source_that_is_declared_alone_does_not_lend_its_uses_to_its_folder(self):
        self.write("bench/two.cpp", '#include "high/high.h"')
        self.assertEqual(self.problems(), ["bench/two.cpp:1: belongs to no folder that the build declares"])

    def test_a_library_has_to_be_named(self):
        self.write("src/middle/middle.cpp", "#include <zlib.h>")
        self.assertEqual(self.problems(), [])
        self.write("src/high/high.cpp", "#include <zlib.h>")
        self.assertEqual(len(self.problems()), 1)

    def test_headers_of_a_system_belong_to_sources_of_that_system(self):
        self.write("src/for_windows/a.cpp", "#include <windows.h>")
        self.write("src/low/low_windows.cpp", "#include <windows.h>")
        self.write("src/low/low_posix.cpp", "#include <sys/stat.h>")
        self.assertEqual(self.problems(), [])
        self.write("src/low/low.cpp", "#include <sys/stat.h>")
        self.write("src/for_windows/b.cpp", "#include <unistd.h>")
        self.assertEqual(len(self.problems()), 2)

    def test_a_use_of_what_is_declared_later_is_a_problem_without_any_include(self):
        later = "src/a\tparvex_a\t\tparvex_b\nsrc/b\tparvex_b\t\t\n"
        self.assertIn("src/a: uses parvex_b, which is declared after it or nowhere", self.problems(later))

    def test_a_source_may_have_450_lines_and_no_more_tests_included(self):
        (self.top / "tests").mkdir()
        self.write("src/low/low.cpp", *[""] * 449, "// the end")
        self.write("tests/low_test.cpp", *[""] * 450, "// the end")
        sizes = [problem for problem in check_house.sizes(self.top) if "a source" in problem]
        self.assertEqual(sizes, ["tests/low_test.cpp:451: a source has at most 450 lines, this one has 451"])

    def test_a_folder_with_more_than_a_quarter_of_all_lines_is_a_problem(self):
        for folder in ("low", "middle", "high", "for_windows"):
            self.write(f"src/{folder}/a.cpp", *["//"] * 100)
        for name in ("low/low.h", "middle/middle.h", "high/high.h"):
            (self.top / "src" / name).unlink()
        self.assertEqual(check_house.sizes(self.top), [])
        self.write("src/low/a.cpp", *["//"] * 101)
        self.assertEqual(check_house.sizes(self.top), ["src/low: holds 101 of 401 lines, more than a quarter"])

    def test_only_the_printers_write_to_the_standard_streams(self):
        self.write("src/low/low.cpp", 'std::snprintf(text, 8, "x");', 'std::cerr << "x";', 'std::fprintf(stderr, "x");',
                   'std::fputs("x", stdout);')
        (self.top / "src/cli/terminal").mkdir(parents=True)
        (self.top / check_house.PRINTERS[0]).write_text('std::fputs("x", stdout);\n', encoding="utf-8")
        told = check_house.printing(self.top)
        self.assertEqual([one.split(" ")[0] for one in told], [f"src/low/low.cpp:{number}:" for number in (2, 3, 4)])

    def test_a_folder_that_is_not_declared_is_a_problem(self):
        self.write("src/forgotten/a.cpp")
        self.assertEqual(self.problems(), ["src/forgotten/a.cpp:1: belongs to no folder that the build declares"])


if __name__ == "__main__":
    unittest.main()
