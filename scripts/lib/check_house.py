#!/usr/bin/env python3
"""Whether the house stands as it was planned.

    check_house.py SOURCE_TREE USES

Arrows point down: compares every include of src/, legacy_standin/, bench/ and fuzz/ with the uses that the build declares
for the folder of the file (USES is uses.tsv of the build tree, cmake/modules.cmake). Rooms stay small enough to be looked
over: no source is longer than 450 lines, those of tests included, and no folder holds more than a quarter of all lines of
src/ and legacy_standin/. What people read is printed in few places, where nothing from outside can control a terminal.

Prints "file:line: what is wrong" for each include that is not declared, each source that belongs to nothing that is
declared, each folder that names what is declared after it, each place that prints by itself, and whatever has grown too large. Ends with 1 when there was
any.
"""
import collections
import pathlib
import re
import sys

FOLDERS = ("src", "legacy_standin", "bench", "fuzz")
ROOMS = ("src", "legacy_standin")
LONGEST_SOURCE = 450  # lines
LARGEST_ROOM = 0.25  # of all lines of the rooms
INCLUDE = re.compile(r'\s*#\s*include\s*(?:"([^"]+)"|<([^>]+)>)')

# Headers of libraries, which only those may include that name the library.
LIBRARIES = (
    ("libxml/", ("LibXml2::LibXml2",)),
    ("zlib.h", ("ZLIB::ZLIB",)),
    ("nlohmann/", ("nlohmann_json::nlohmann_json",)),
    ("CLI/", ("CLI11::CLI11",)),
    ("benchmark/", ("benchmark::benchmark", "benchmark::benchmark_main")),
)
# Headers of a system belong to what is built on it only: to modules that say so, and to sources named after it.
SYSTEM_HEADERS = {
    "windows": re.compile(r"(windows|windowsx|objbase|objidl|ole2|oleauto|ocidl|oaidl|olectl|shellapi|shlwapi|shlobj|tlhelp32|"
                          r"msxml2?|comdef|comcat|activscp|winsvc|io|direct|process)\.h$"),
    "posix": re.compile(r"(sys/|linux/|(unistd|dirent|spawn|dlfcn|pthread|langinfo|poll|termios|pwd)\.h$)"),
}
PLATFORM_NAMES = {"windows": ("_windows", "_msxml"), "posix": ("_posix", "_libxml2")}
# Who writes to the standard streams. Everybody else hands his text to one of these, which take out of it what would
# control a terminal.
PRINTERS = ("src/cli/terminal/standard_streams.cpp", "src/cli/terminal/progress.cpp", "src/cli/host/written_boxes.cpp",
            "legacy_standin/workflow/program/main.cpp")
PRINTS = re.compile(r"std::(cout|cerr|clog)\b|\b(f?printf|f?puts|fputc|putchar|perror|vf?printf)\s*\(|\bfwrite\s*\(")


class Declared:
    """What the build declares: path -> (library, platform, libraries that it names), and the library of each path."""

    def __init__(self, text):
        self.paths = {}
        self.folder_of = {}
        self.groups = {}
        self.problems = []
        order = {}
        for line in text.splitlines():
            path, name, platform, depends = line.split("\t")
            depends = [one for one in depends.split(";") if one]
            if not path:
                self.groups[name] = depends
                order[name] = len(order)
                continue
            self.paths[path] = (name, platform, depends)
            for used in depends:
                if used.startswith("parvex_") and used not in order:
                    self.problems.append(f"{path}: uses {used}, which is declared after it or nowhere")
            if name:
                self.folder_of[name] = path
                order[name] = len(order)

    def of(self, path):
        """The declaration that a source falls under: its own, else its folder's."""
        return self.paths.get(path) or self.paths.get(str(pathlib.PurePosixPath(path).parent))

    def reachable(self, depends):
        """The folders and libraries that these names give: a group gives its members, nothing gives what it uses."""
        found = set()
        for name in depends:
            if name in self.groups:
                found |= self.reachable(self.groups[name])
            else:
                found.add(self.folder_of.get(name, name))
        return found


def own_platform(path, platform):
    """The platform that a source belongs to alone: by its module, else by its name."""
    stem = pathlib.PurePosixPath(path).stem
    for name, endings in PLATFORM_NAMES.items():
        if platform == name or stem.endswith(endings):
            return name
    return ""


def problem_of(top, declared, path, quoted, angled):
    name, platform, depends = declared.of(path)
    allowed = declared.reachable(depends)
    if quoted:
        for root in ("src/", ""):
            if (top / root / quoted).is_file():
                folder = str(pathlib.PurePosixPath(root + quoted).parent)
                if folder == str(pathlib.PurePosixPath(path).parent) or folder in allowed:
                    return ""
                if folder.startswith("tests/"):
                    return "" if "parvex_test_support" in depends else f"includes {quoted}, which is the tests'"
                return f"includes {quoted}, but the build declares no use of {folder} there"
        return ""  # made by the build
    for prefix, libraries in LIBRARIES:
        if angled.startswith(prefix) and not allowed.intersection(libraries):
            return f"includes <{angled}>, but the build declares no use of {libraries[0]} there"
    for system, headers in SYSTEM_HEADERS.items():
        if headers.match(angled) and own_platform(path, platform) != system:
            return f"includes <{angled}>, which only sources of {system} may"
    return ""


def sources_of(top, folders):
    for folder in folders:
        for file in sorted((top / folder).rglob("*")):
            if file.suffix in (".cpp", ".h") and file.is_file():
                yield file.relative_to(top).as_posix(), file.read_text(encoding="utf-8").splitlines()


def printing(top):
    """Who prints by himself, and may not."""
    return [f"{path}:{number}: prints by itself, which only {len(PRINTERS)} sources may"
            for path, lines in sources_of(top, ROOMS) if path not in PRINTERS
            for number, line in enumerate(lines, 1) if PRINTS.search(line)]


def sizes(top):
    """What has grown too large."""
    problems = []
    rooms = collections.Counter()
    for path, lines in sources_of(top, FOLDERS + ("tests",)):
        if len(lines) > LONGEST_SOURCE:
            problems.append(f"{path}:{LONGEST_SOURCE + 1}: a source has at most {LONGEST_SOURCE} lines, this one has {len(lines)}")
        if path.startswith(tuple(room + "/" for room in ROOMS)):
            rooms[str(pathlib.PurePosixPath(path).parent)] += len(lines)
    for folder, lines in rooms.items():
        if lines > LARGEST_ROOM * rooms.total():
            problems.append(f"{folder}: holds {lines} of {rooms.total()} lines, more than a quarter")
    return problems


def check(top, uses_text):
    declared = Declared(uses_text)
    problems = list(declared.problems)
    count = 0
    for path, lines in sources_of(top, FOLDERS):
        count += 1
        if declared.of(path) is None:
            problems.append(f"{path}:1: belongs to no folder that the build declares")
            continue
        for number, line in enumerate(lines, 1):
            found = INCLUDE.match(line)
            problem = found and problem_of(top, declared, path, *found.groups(default=""))
            if problem:
                problems.append(f"{path}:{number}: {problem}")
    return count, problems


def main():
    top, uses = pathlib.Path(sys.argv[1]), pathlib.Path(sys.argv[2])
    count, problems = check(top, uses.read_text(encoding="utf-8"))
    problems += sizes(top) + printing(top)
    for problem in problems:
        print(problem)
    print(f"{count} sources, {len(problems)} of them or of their includes not as planned")
    return 1 if problems or not count else 0


if __name__ == "__main__":
    sys.exit(main())
