#!/usr/bin/env python3
"""Shows a Hybris quote document as a short text: summarise.py FILE.

Ends with 1, and a reason on standard error, when the file holds no quote document or one without tags.
"""

import sys
import xml.etree.ElementTree as ElementTree
from decimal import Decimal, InvalidOperation


def main(path):
    try:
        root = ElementTree.parse(path).getroot()
    except (OSError, ElementTree.ParseError) as error:
        return fail(f"{path} cannot be read: {error}")
    if root.tag == "LegacyORLA":
        return fail(f"{path} is a refusal: {root.findtext('errorMessage', '')}")
    if root.tag != "PROJECT":
        return fail(f"{path} holds no quote document but <{root.tag}>")
    tags = root.findall("TAGS/TAG")
    if not tags:
        return fail(f"{path} holds no tag")

    print(f"Project {root.find('ATTRIBUTES_LIST/JOB').get('LEGACY_PROJECTNAME')!r}, {count(len(tags), 'tag')}")
    total = sum((show_tag(number, tag) for number, tag in enumerate(tags, 1)), Decimal(0))
    print(f"\nTogether {total:,.2f}")
    return 0


def show_tag(number, tag):
    """Prints one tag and gives back its price: units and components, each times its quantity."""
    text = lambda name: tag.findtext(f"ATTRIBUTES_LIST/{name}") or ""
    stored = len(text("BLOB"))
    print(f"\n{number}. {text('MARKFOR')}")
    print(f"   PDSG {text('PDSG')}, tag id {text('LEGACY_TAGID')}, build version {text('BUILDVERSION') or 'unknown'}, "
          f"stored data {f'yes ({stored:,} characters of Base64)' if stored else 'no'}")
    return sum((show_unit(unit) for unit in tag.findall("BASEUNITS/BASEUNIT")), Decimal(0))


def show_unit(unit):
    components = unit.findall("COMPONENTS/COMPONENT")
    price = amount(unit) + sum(map(amount, components))
    descriptions = [node.text or "" for node in unit.findall("EXTENDED_DESCRIPTIONS/DESCRIPTION")]
    marks = [mark for mark, present in (
        ("engineered to order", unit.findtext("ATTRIBUTES_LIST/ETO") == "1"),
        ("SAP configuration", bool(unit.findtext("SAP_XML")))) if present]
    print(f"   Base unit {unit.get('SEQUENCE')}: {unit.get('QUANTITY')} x {unit.get('PARTNUMBER')} at "
          f"{unit.get('PRICE')} {unit.findtext('ATTRIBUTES_LIST/SUPPLIER')}{''.join(', ' + mark for mark in marks)}")
    for description in descriptions:
        print(f"     {description}")
    kinds = {}
    for component in components:
        kinds.setdefault(component.get("TYPE"), []).append(component)
    for kind, members in kinds.items():
        parts = ", ".join(f"{member.get('QUANTITY')} x {member.get('PARTNUMBER')}" for member in members)
        print(f"     {len(members)} {kind}: {parts}; {sum(map(amount, members)):,.2f}")
    print(f"     = {price:,.2f}")
    return price


def amount(element):
    return number(element.get("PRICE")) * number(element.get("QUANTITY"))


def number(text):
    try:
        return Decimal(text or "0")
    except InvalidOperation:
        return Decimal(0)


def count(items, noun):
    return f"{items} {noun}" + ("" if items == 1 else "s")


def fail(reason):
    print(reason, file=sys.stderr)
    return 1


if __name__ == "__main__":
    if len(sys.argv) != 2:
        sys.exit(fail("usage: summarise.py FILE"))
    sys.exit(main(sys.argv[1]))
