"""What the interface definition fixes: the library's identifier, the interfaces and the classes."""

import re
from dataclasses import dataclass
from pathlib import Path


@dataclass
class Named:
    name: str
    id: str
    description: str


@dataclass
class Library:
    name: str
    id: str
    version: str
    description: str
    interfaces: list
    classes: list


def read_library(path):
    text = re.sub(r"//[^\n]*", "", Path(path).read_text())
    library = re.search(
        r'\[uuid\(([0-9A-F-]+)\), version\(([0-9.]+)\), helpstring\("([^"]*)"\)\]\s*library (\w+)', text)

    def named(kind):
        # Attributes end with the identifier and the help string, in this order.
        found = re.findall(r'uuid\(([0-9A-F-]+)\),\s*helpstring\("([^"]*)"\)\]\s*%s (\w+)' % kind, text)
        return [Named(name, "{%s}" % id, description) for id, description, name in found]

    return Library(library[4], "{%s}" % library[1], library[2], library[3], named("interface"), named("coclass"))
