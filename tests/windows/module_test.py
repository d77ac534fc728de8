"""What a built Parvex.dll exports, imports and carries, read from the file; the version resources of all that is built
with it, and the names in its manifest.

    module_test.py DLL OBJDUMP
"""

import re
import subprocess
import sys
import xml.etree.ElementTree as ElementTree
from pathlib import Path

ENTRY_POINTS = ["DllCanUnloadNow", "DllGetClassObject", "DllInstall", "DllRegisterServer", "DllUnregisterServer"]
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
    check(sorted(exports) == ENTRY_POINTS, f"it exports the entry points, undecorated: {exports}")

    imports = {name.lower() for name in re.findall(r"DLL Name: (\S+)", headers)}
    check(imports and imports <= SYSTEM, f"it imports DLLs of the system only: {sorted(imports)}")

    library = content.find(b"MSFT")
    check(library != -1, "a type library is embedded")
    check(all(name.encode() in content[library:] for name in CLASSES), "the type library names every class")
    check(Path(dll).with_suffix(".tlb").read_bytes() in content, "the type library beside it is the embedded one")

    folder = Path(dll).parent
    for path in sorted([*folder.glob("*.dll"), *folder.glob("*.exe")]):
        resources = path.read_bytes()
        named = f"OriginalFilename\0\0{path.name}".encode("utf-16-le")
        unpadded = f"OriginalFilename\0{path.name}".encode("utf-16-le")
        check("VS_VERSION_INFO".encode("utf-16-le") in resources and (named in resources or unpadded in resources),
              f"{path.name} has a version resource of its own")

    # An assembly's manifest is looked for under the assembly's name, behind a DLL of that name.
    manifests = list(folder.glob("Parvex*.manifest"))
    check(len(manifests) == 1, f"it has one manifest: {manifests}")
    assembly = ElementTree.parse(manifests[0]).getroot()
    space = "{urn:schemas-microsoft-com:asm.v1}"
    name = assembly.find(f"{space}assemblyIdentity").get("name")
    check(name == manifests[0].stem, f"the assembly {name} has the name of its manifest")
    check(not (folder / f"{name}.dll").exists(), "no DLL has the assembly's name")
    check([file.get("name") for file in assembly.findall(f"{space}file")] == [Path(dll).name],
          "the manifest names the DLL")


main()
