"""What the figures were measured on and with: the machine without its name, and the versions that count."""

import importlib.metadata
import os
import platform
import re
import subprocess


def said_by(*command):
    """The first line that a command says; nothing when it fails or does not exist."""
    try:
        run = subprocess.run(command, capture_output=True, text=True, check=True)
    except (OSError, subprocess.CalledProcessError):
        return ""
    return run.stdout.strip().split("\n")[0]


def found_in(path, pattern):
    try:
        with open(path, encoding="utf-8") as file:
            found = re.search(pattern, file.read(), re.MULTILINE)
    except OSError:
        return ""
    return found.group(1).strip() if found else ""


def version_of_lxml():
    try:
        return importlib.metadata.version("lxml")
    except importlib.metadata.PackageNotFoundError:
        return ""


def of_machine():
    memory = int(found_in("/proc/meminfo", r"^MemTotal:\s+(\d+)") or 0) / (1 << 20)
    return [
        ("Processor", found_in("/proc/cpuinfo", r"^model name\s*:(.*)")),
        ("Processors", str(len(os.sched_getaffinity(0)))),
        ("Memory", f"{memory:.1f} GiB"),
        ("Kernel", platform.release()),
        ("Transparent huge pages", found_in("/sys/kernel/mm/transparent_hugepage/enabled", r"\[(\w+)\]")),
        ("Load at the beginning", f"{os.getloadavg()[0]:.2f}"),
    ]


def of_software(build):
    cache = os.path.join(build, "CMakeCache.txt")
    return [
        ("System", found_in("/etc/os-release", r'^PRETTY_NAME="?([^"\n]*)') +
         f" ({found_in('/etc/debian_version', r'(.*)')})"),
        ("Compiler", said_by(found_in(cache, r"^CMAKE_CXX_COMPILER:\w+=(.*)") or "c++", "--version")),
        ("Compiler for Windows", said_by("x86_64-w64-mingw32-g++-posix", "--version")),
        ("Wine", said_by("wine", "--version")),
        ("Build type", found_in(cache, r"^CMAKE_BUILD_TYPE:\w+=(.*)")),
        ("libxml2", said_by("pkg-config", "--modversion", "libxml-2.0")),
        ("zlib", said_by("pkg-config", "--modversion", "zlib")),
        ("Google Benchmark", said_by("pkg-config", "--modversion", "benchmark")),
        ("Python", platform.python_version()),
        ("lxml", version_of_lxml()),
    ]


def commit_of(source):
    commit = said_by("git", "-C", source, "rev-parse", "--short=12", "HEAD")
    changed = said_by("git", "-C", source, "status", "--porcelain", "--untracked-files=no", "--", ":/src", ":/bench")
    return commit + (" with changes that are not committed" if changed else "")
