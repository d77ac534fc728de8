"""Writes the description of the installer: files, and the registration that DllRegisterServer would make.

    make_wxs.py IDL VERSION x64|x86 OUT CONDITIONS

CONDITIONS is written for finish_msi.py: what the installer's compiler has no words for.

The files are expected under the names that the variable BIN of the installer's compiler gives a folder for. Everything
is written as plain registry values, so that removing the product removes each of them.

What the installers of both bitnesses write alike (programmatic ids, the type library's name, the application of the
surrogate) stands in components that have the same identifier in both: the system counts who uses them, and removes them
with the last one.

Public properties:
    INSTALLDIR                  the folder
    ROUTER_CLSID, ROUTER_IID    the message router's identifiers, written to SOFTWARE\\Parvex\\Router when both are given
    SURROGATE=1                 the classes are served by a surrogate process too
    ADDTOPATH=1                 the folder is added to the search path, and parvex.exe to the programs known by name
    MSIINSTALLPERUSER=1         for the current user only; else for all users
"""

import sys
import uuid
from dataclasses import dataclass, field
from pathlib import Path
from xml.sax.saxutils import quoteattr

from interface_definition import read_library

AUTOMATION_PROXY = "{00020424-0000-0000-C000-000000000046}"
# Fixed for ever: by it the next version finds this one.
UPGRADE_CODES = {"x64": "{1D5C0B0E-33E7-4E0B-8C1C-0E0F7D8B6A64}", "x86": "{1D5C0B0E-33E7-4E0B-8C1C-0E0F7D8B6A86}"}
# The same as in the component (parvex_server.cpp).
APPLICATION = "{5C1C5A5E-3A2F-4A4B-9F4D-276E0BD1C047}"
NAMESPACE = uuid.UUID("6a1f0e52-78f4-4f0e-9f0f-0f4f3f1c5e01")
FILES = ["Parvex.dll", "Parvex.tlb", "Parvex.Component.manifest", "parvex.exe", "LICENSE.txt"]
# The program of the other bitness: its name, and whether the system runs it.
OTHER_PROGRAMS = {"x64": ("parvex32.exe", ""), "x86": ("parvex64.exe", "VersionNT64")}
OTHER_SOURCE = "other/parvex.exe"
DLL = "[#ParvexDll]"
# Where 64-bit programs do not see the programmatic ids, type libraries and applications that 32-bit ones see: before
# Windows 7, and on Wine before 10. (Wine that has one key for both shows 32-bit programs what 64-bit ones know of texts.)
TWO_CLASSES_KEYS = "VersionNT64 < 601 OR (%WINECONFIGDIR AND NOT ONE_CLASSES_KEY)"
# Given by the user; the first three are found by searches.
PROPERTIES = ["ONE_CLASSES_KEY", "WIX_UPGRADE_DETECTED", "WIX_DOWNGRADE_DETECTED", "INSTALLDIR", "ROUTER_CLSID",
              "ROUTER_IID", "SURROGATE", "ADDTOPATH"]


@dataclass
class Component:
    """What is installed and removed together, where the user chose it and the system needs it. `source` is the file's
    name where it is built, if it is another. `values` are (root, key, value name, type, value); `path` names the
    environment's variable that gets the folder behind its value."""
    name: str
    guid: str
    in_64_bit_view: bool
    file: str = ""
    source: str = ""
    choice: str = ""
    system: str = ""
    values: list = field(default_factory=list)
    path: str = ""

    def condition(self):
        """Choices are made when it is installed; whatever was installed is removed. The system stays the same."""
        parts = ([f'({self.choice}) OR REMOVE="ALL"'] if self.choice else []) + ([self.system] if self.system else [])
        return " AND ".join(f"({part})" for part in parts)

    def lines(self):
        win64 = ' Win64="yes"' if self.in_64_bit_view else ""
        yield f'          <Component Id="{self.name}" Guid="{self.guid}"{win64}>'
        if self.file:
            yield (f'            <File Id="{file_identifier(self.file)}" Name="{self.file}"'
                   f' Source="$(var.BIN)/{self.source or self.file}" KeyPath="yes"/>')
        for i, (root, key, name, kind, value) in enumerate(self.values):
            named = f" Name={quoteattr(name)}" if name else ""
            key_path = ' KeyPath="yes"' if i == 0 and not self.file else ""
            yield (f'            <RegistryValue Root="{root}" Key={quoteattr(key)}{named} Type="{kind}"'
                   f' Value={quoteattr(value)}{key_path}/>')
        yield '          </Component>'


def identifier(*parts):
    return "{%s}" % str(uuid.uuid5(NAMESPACE, "|".join(parts))).upper()


def file_identifier(name):
    """ParvexDll for Parvex.dll"""
    return "".join(part.capitalize() for part in name.split("."))


def text(key, name, value):
    return "HKCR", key, name, "string", value


def class_values(library):
    for c in library.classes:
        key = f"CLSID\\{c.id}"
        program_id = f"Parvex.{c.name}"
        yield text(key, "", c.description)
        yield text(f"{key}\\InprocServer32", "", DLL)
        yield text(f"{key}\\InprocServer32", "ThreadingModel", "Apartment")
        yield text(f"{key}\\ProgID", "", f"{program_id}.1")
        yield text(f"{key}\\VersionIndependentProgID", "", program_id)
        yield text(f"{key}\\TypeLib", "", library.id)


def programmatic_id_values(library):
    for c in library.classes:
        program_id = f"Parvex.{c.name}"
        yield text(program_id, "", c.description)
        yield text(f"{program_id}\\CLSID", "", c.id)
        yield text(f"{program_id}\\CurVer", "", f"{program_id}.1")
        yield text(f"{program_id}.1", "", c.description)
        yield text(f"{program_id}.1\\CLSID", "", c.id)


def library_key(library):
    return f"TypeLib\\{library.id}\\{library.version}"


def library_values(library):
    yield text(library_key(library), "", library.description)
    yield text(f"{library_key(library)}\\FLAGS", "", "0")


def interface_values(library):
    for i in library.interfaces:
        key = f"Interface\\{i.id}"
        yield text(key, "", i.name)
        yield text(f"{key}\\ProxyStubClsid32", "", AUTOMATION_PROXY)
        yield text(f"{key}\\TypeLib", "", library.id)
        yield text(f"{key}\\TypeLib", "Version", library.version)


def application_values(x64):
    key = f"AppID\\{APPLICATION}"
    yield text(key, "", "Parvex")
    yield text(key, "DllSurrogate", "")
    yield "HKCR", key, "PreferredServerBitness", "integer", "3" if x64 else "2"


def router_values():
    for name, value in (("ClassId", "[ROUTER_CLSID]"), ("InterfaceId", "[ROUTER_IID]")):
        yield "HKMU", "SOFTWARE\\Parvex\\Router", name, "string", value


def known_program_values():
    yield ("HKMU", "SOFTWARE\\Microsoft\\Windows\\CurrentVersion\\App Paths\\parvex.exe", "", "string",
           "[INSTALLDIR]parvex.exe")


def components(library, architecture):
    x64 = architecture == "x64"
    for name in FILES:
        file_component = Component(f"Component{file_identifier(name)}", identifier("component", name, architecture), x64,
                                   file=name)
        if name == "Parvex.dll":
            file_component.values += class_values(library)
            platform = "win64" if x64 else "win32"
            file_component.values.append(text(f"{library_key(library)}\\0\\{platform}", "", DLL))
        yield file_component
    program, system = OTHER_PROGRAMS[architecture]
    yield Component("OtherProgram", identifier("component", program, architecture), x64, file=program, source=OTHER_SOURCE,
                    system=system)

    def own(name, values, choice="", system=""):
        return Component(name, identifier("component", name, architecture), x64, choice=choice, system=system,
                         values=list(values))

    def shared(name, values, choice=""):
        # One identifier and one view in both installers.
        return Component(name, identifier("component", name), False, choice=choice, values=list(values))

    yield shared("ProgrammaticIds", programmatic_id_values(library))
    yield shared("TypeLibrary", library_values(library))
    # Seen by 32-bit programs, and by 64-bit ones: calls between the two need both.
    yield shared("Interfaces", interface_values(library))
    yield shared("Surrogate", application_values(x64), "SURROGATE")
    if x64:
        yield own("InterfacesFor64Bit", interface_values(library))
        yield own("ClassesFor64Bit", [*programmatic_id_values(library), *library_values(library)],
                  system=TWO_CLASSES_KEYS)
        yield own("SurrogateFor64Bit", application_values(x64), "SURROGATE", TWO_CLASSES_KEYS)
    yield own("ServedBySurrogate", [text(f"CLSID\\{c.id}", "AppID", APPLICATION) for c in library.classes],
              "SURROGATE")
    yield own("RouterIdentifiers", router_values(), "ROUTER_CLSID AND ROUTER_IID")
    # "=": set when it is installed; "-": taken out when it is removed; "*": the machine's variable, else the user's.
    for name, path, choice in (("PathOfMachine", "=-*PATH", "ADDTOPATH AND NOT MSIINSTALLPERUSER"),
                               ("PathOfUser", "=-PATH", "ADDTOPATH AND MSIINSTALLPERUSER")):
        component = own(name, known_program_values(), choice)
        component.path = path
        yield component


def main():
    idl, version, architecture, out, conditions = sys.argv[1:]
    library = read_library(idl)
    folder = "ProgramFiles64Folder" if architecture == "x64" else "ProgramFilesFolder"
    made = list(components(library, architecture))
    lines = ['<?xml version="1.0" encoding="UTF-8"?>',
             '<Wix xmlns="http://schemas.microsoft.com/wix/2006/wi">',
             f'  <Product Id="{identifier("product", version, architecture)}" Name="Parvex ({architecture})"',
             f'           Language="1033" Version="{version}" Manufacturer="The developers of Parvex"'
             f' UpgradeCode="{UPGRADE_CODES[architecture]}">',
             # For all users or, with MSIINSTALLPERUSER=1, for the current one.
             '    <Package InstallerVersion="500" Compressed="yes"/>',
             '    <Property Id="ALLUSERS" Value="2"/>',
             '    <Property Id="ONE_CLASSES_KEY"><RegistrySearch Id="TextsIn32BitView" Root="HKLM" Type="raw"'
             ' Key="Software\\Classes\\.txt" Name="Content Type"/></Property>',
             '    <MajorUpgrade DowngradeErrorMessage="A newer version of Parvex is installed. Remove it first to install'
             ' this one."/>',
             '    <Condition Message="ROUTER_CLSID and ROUTER_IID belong together: give both or none.">'
             '(ROUTER_CLSID AND ROUTER_IID) OR (NOT ROUTER_CLSID AND NOT ROUTER_IID)</Condition>',
             '    <Media Id="1" Cabinet="parvex.cab" EmbedCab="yes"/>',
             '    <Directory Id="TARGETDIR" Name="SourceDir">',
             f'      <Directory Id="{folder}">',
             '        <Directory Id="INSTALLDIR" Name="Parvex">']
    for component in made:
        lines += component.lines()
    lines += ['        </Directory>', '      </Directory>', '    </Directory>',
              '    <Feature Id="Complete" Title="Parvex" Level="1">']
    lines += [f'      <ComponentRef Id="{component.name}"/>' for component in made]
    lines += ['    </Feature>', '  </Product>', '</Wix>']
    Path(out).write_text("\n".join(lines) + "\n")
    of_components = [f"{component.name}\t{component.condition()}" for component in made if component.condition()]
    of_paths = [f"{component.name}\t{component.path}\t[~];[INSTALLDIR]" for component in made if component.path]
    Path(conditions).write_text("\n".join([*of_components, *of_paths, ";".join(PROPERTIES)]) + "\n")


main()
