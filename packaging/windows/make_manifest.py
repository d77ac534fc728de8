"""Writes the manifest by which a program uses Parvex.dll without any registration.

    make_manifest.py IDL VERSION ARCHITECTURE OUT
"""

import sys
from pathlib import Path

from interface_definition import read_library

AUTOMATION_PROXY = "{00020424-0000-0000-C000-000000000046}"
DISPATCH = "{00020400-0000-0000-C000-000000000046}"


def main():
    idl, version, architecture, out = sys.argv[1:]
    library = read_library(idl)
    lines = ['<?xml version="1.0" encoding="UTF-8" standalone="yes"?>',
             '<assembly xmlns="urn:schemas-microsoft-com:asm.v1" manifestVersion="1.0">',
             f'  <assemblyIdentity type="win32" name="{Path(out).stem}" version="{version}.0"'
             f' processorArchitecture="{architecture}"/>',
             '  <file name="Parvex.dll">']
    for c in library.classes:
        lines += [f'    <comClass clsid="{c.id}" threadingModel="Apartment" tlbid="{library.id}"',
                  f'              progid="Parvex.{c.name}" description="{c.description}">',
                  f'      <progid>Parvex.{c.name}.1</progid>',
                  '    </comClass>']
    lines += [f'    <typelib tlbid="{library.id}" version="{library.version}" helpdir=""/>', '  </file>']
    for i in library.interfaces:
        lines += [f'  <comInterfaceExternalProxyStub name="{i.name}" iid="{i.id}" tlbid="{library.id}"',
                  f'                                 baseInterface="{DISPATCH}"',
                  f'                                 proxyStubClsid32="{AUTOMATION_PROXY}"/>']
    lines.append('</assembly>')
    Path(out).write_text("\r\n".join(lines) + "\r\n", newline="")


main()
