"""The sample machine, natively or under Wine, whose exports a proof starts."""

import json
import shutil
import subprocess
import sys
from pathlib import Path

sys.path.insert(0, str(Path(__file__).resolve().parents[2] / "tests/windows"))
import prepare  # noqa: E402
import wine  # noqa: E402


def install(scratch, native_bin, windows_bin=None):
    """A new machine: of the Windows build where its folder is named, else native."""
    native_bin = Path(native_bin).resolve()
    if windows_bin is None:
        return NativeMachine(native_bin, scratch)
    return WindowsMachine(native_bin, Path(windows_bin).resolve())


class Machine:
    def add_project(self, sample, name, tags):
        """A copy of the sample project whose tags have other names."""
        shutil.rmtree(self.projects / name, ignore_errors=True)
        shutil.copytree(self.projects / sample, self.projects / name)
        units = self.projects / name / "units.json"
        text = units.read_text(encoding="utf-8")
        for old, new in tags.items():
            if f'"{old}"' not in text:
                sys.exit(f"the sample project has no tag {old}")
            text = text.replace(f'"{old}"', f'"{new}"')
        json.loads(text)
        units.write_text(text, encoding="utf-8")

    def start_export(self, project, quote, cases=None):
        """Starts an export into a file, recorded into a folder of cases where that is given."""
        record = ["--record", self.path(cases)] if cases else []
        return self.start([*record, "export", "--project", project, "--lenient", "-o", self.path(quote)])


class NativeMachine(Machine):
    name = "Linux"

    def __init__(self, native_bin, scratch):
        self.program = native_bin / "parvex"
        self.folder = scratch / "machine"
        subprocess.run([self.program, "machine", "create", self.folder], check=True, stdout=subprocess.DEVNULL)
        self.projects = self.folder / "drive_c" / wine.APPLICATION / "Projects"

    def path(self, path):
        return str(path)

    def start(self, arguments):
        return subprocess.Popen([self.program, "--machine", self.folder, *arguments], stdout=subprocess.DEVNULL,
                                stderr=subprocess.PIPE, text=True)


class WindowsMachine(Machine):
    name = "Windows"

    def __init__(self, native_bin, windows_bin):
        self.program = windows_bin / "parvex.exe"
        prepare.prepare(native_bin, windows_bin)
        self.projects = wine.drive_c() / wine.APPLICATION / "Projects"

    def path(self, path):
        return wine.windows_path(path)

    def start(self, arguments):
        return subprocess.Popen(["wine", self.program, *arguments], stdin=subprocess.DEVNULL, stdout=subprocess.DEVNULL,
                                stderr=subprocess.PIPE, text=True, env=wine.environment())
