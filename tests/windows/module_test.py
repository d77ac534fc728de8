"""What a built Parvex.dll exports, imports and carries, read from the file.

    module_test.py DLL OBJDUMP
"""

import re
import subprocess
import sys
from pathlib import Path

ENTRY_POINTS = ["DllCanUnloadNow", "DllGetClassObject", "DllRegisterServer", "DllUnregisterServer"]
SYSTEM = {"advapi32.dll", "kernel32.dll", "msvcrt.dll", "ole32.dll", "oleaut32.dll", "shell32.dll", "user32.dll"}
CLASSES = ["LegacyORLAPull", "TagCls", "BaseUnitCls", "AccessoryCls", "WarrantyCls", "cBinEncoder"]


def check(condition, message):
    if not condition:
        sys.exit(f"FAILED: {message}")
    print(f"ok: {message}")


def main():
    dll, objdump = sys.argv[1:]
    content = Path(dll).read_bytes()
    headers = subprocess.run([objdump, "-p", dll], capture_output=True, text=True, check=True).stdout

    exports = re.findall(r"^\s+\[\s*\d+\] (?:\+base\[\s*\d+\] *[0-9a-f]* *)?(Dll\w+)$", headers, re.M)
    check(sorted(exports) == ENTRY_POINTS, f"it exports the four entry points, undecorated: {exports}")

    imports = {name.lower() for name in re.findall(r"DLL Name: (\S+)", headers)}
    check(imports and imports <= SYSTEM, f"it imports DLLs of the system only: {sorted(imports)}")

    library = content.find(b"MSFT")
    check(library != -1, "a type library is embedded")
    check(all(name.encode() in content[library:] for name in CLASSES), "the type library names every class")
    check(Path(dll).with_suffix(".tlb").read_bytes() in content, "the type library beside it is the embedded one")
    check("VS_VERSION_INFO".encode("utf-16-le") in content, "it has a version resource")


main()
