"""Writes the description of the installer: files, and the registration that DllRegisterServer would make.

    make_wxs.py IDL VERSION x64|x86 OUT

The files are expected under the names that the variable BIN of the installer's compiler gives a folder for. Everything
is written as plain registry values, so that removing the product removes each of them.
"""

import sys
import uuid
from pathlib import Path
from xml.sax.saxutils import quoteattr

from interface_definition import read_library

AUTOMATION_PROXY = "{00020424-0000-0000-C000-000000000046}"
# Fixed for ever: by it the next version finds this one.
UPGRADE_CODES = {"x64": "{1D5C0B0E-33E7-4E0B-8C1C-0E0F7D8B6A64}", "x86": "{1D5C0B0E-33E7-4E0B-8C1C-0E0F7D8B6A86}"}
NAMESPACE = uuid.UUID("6a1f0e52-78f4-4f0e-9f0f-0f4f3f1c5e01")
FILES = ["Parvex.dll", "Parvex.tlb", "Parvex.manifest", "parvex.exe", "LICENSE.txt"]


def identifier(*parts):
    return "{%s}" % str(uuid.uuid5(NAMESPACE, "|".join(parts))).upper()


def file_identifier(name):
    """ParvexDll for Parvex.dll"""
    return "".join(part.capitalize() for part in name.split("."))


def registry_values(library, architecture):
    """(key below HKCR, value name, text)"""
    dll = "[#ParvexDll]"
    for c in library.classes:
        key = f"CLSID\\{c.id}"
        program_id = f"Parvex.{c.name}"
        yield key, "", c.description
        yield f"{key}\\InprocServer32", "", dll
        yield f"{key}\\InprocServer32", "ThreadingModel", "Apartment"
        yield f"{key}\\ProgID", "", f"{program_id}.1"
        yield f"{key}\\VersionIndependentProgID", "", program_id
        yield f"{key}\\TypeLib", "", library.id
        yield f"{program_id}.1", "", c.description
        yield f"{program_id}.1\\CLSID", "", c.id
        yield program_id, "", c.description
        yield f"{program_id}\\CLSID", "", c.id
        yield f"{program_id}\\CurVer", "", f"{program_id}.1"
    key = f"TypeLib\\{library.id}\\{library.version}"
    yield key, "", library.description
    yield f"{key}\\FLAGS", "", "0"
    yield f"{key}\\0\\{'win64' if architecture == 'x64' else 'win32'}", "", dll
    yield f"{key}\\HELPDIR", "", "[INSTALLDIR]"
    for i in library.interfaces:
        key = f"Interface\\{i.id}"
        yield key, "", i.name
        yield f"{key}\\ProxyStubClsid32", "", AUTOMATION_PROXY
        yield f"{key}\\TypeLib", "", library.id
        yield f"{key}\\TypeLib", "Version", library.version


def main():
    idl, version, architecture, out = sys.argv[1:]
    library = read_library(idl)
    x64 = architecture == "x64"
    win64 = ' Win64="yes"' if x64 else ""
    lines = ['<?xml version="1.0" encoding="UTF-8"?>',
             '<Wix xmlns="http://schemas.microsoft.com/wix/2006/wi">',
             f'  <Product Id="{identifier("product", version, architecture)}" Name="Parvex ({architecture})"',
             f'           Language="1033" Version="{version}" Manufacturer="The developers of Parvex"'
             f' UpgradeCode="{UPGRADE_CODES[architecture]}">',
             f'    <Package InstallerVersion="200" Compressed="yes" InstallScope="perMachine"/>',
             '    <MajorUpgrade DowngradeErrorMessage="A newer version of Parvex is installed."/>',
             '    <Media Id="1" Cabinet="parvex.cab" EmbedCab="yes"/>',
             '    <Directory Id="TARGETDIR" Name="SourceDir">',
             f'      <Directory Id="{"ProgramFiles64Folder" if x64 else "ProgramFilesFolder"}">',
             '        <Directory Id="INSTALLDIR" Name="Parvex">']
    for name in FILES:
        file_id = file_identifier(name)
        component_id = identifier("component", name, architecture)
        lines += [f'          <Component Id="Component{file_id}" Guid="{component_id}"{win64}>',
                  f'            <File Id="{file_id}" Name="{name}" Source="$(var.BIN)/{name}" KeyPath="yes"/>']
        if name == "Parvex.dll":
            for key, value_name, text in registry_values(library, architecture):
                named = f" Name={quoteattr(value_name)}" if value_name else ""
                lines.append(f'            <RegistryValue Root="HKCR" Key={quoteattr(key)}{named} Type="string"'
                             f' Value={quoteattr(text)}/>')
        lines.append('          </Component>')
    lines += ['        </Directory>', '      </Directory>', '    </Directory>',
              '    <Feature Id="Complete" Title="Parvex" Level="1">']
    lines += [f'      <ComponentRef Id="Component{file_identifier(name)}"/>' for name in FILES]
    lines += ['    </Feature>', '  </Product>', '</Wix>']
    Path(out).write_text("\n".join(lines) + "\n")


main()
