#!/usr/bin/env python3
"""The peer of the export measurement: the same selection turned into the same document with a dictionary and lxml.

  peer.py MACHINE_FOLDER OUTPUT

It covers what make_selection.py writes (one base unit a tag, accessories, a warranty, stored data), nothing else, and
does not look anything up in a database.
"""
import base64
import io
import os
import sys
import zipfile

from lxml import etree


def read_ini(path):
    sections, current = {}, None
    with open(path, encoding="cp1252", newline="") as file:
        for line in file:
            line = line.strip()
            if line.startswith("[") and line.endswith("]"):
                current = sections.setdefault(line[1:-1].lower(), {})
            elif "=" in line and current is not None:
                key, value = line.split("=", 1)
                current.setdefault(key.strip().lower(), value.strip()[:254])
    return sections


def brand(supplier, type_of_sale):
    known = {"KORVANE": "Korvane", "TESSEL": "Tessel", "QZN": "QZN"}
    found = known.get(supplier.strip().upper())
    return found or {"1": "Korvane", "2": "Tessel", "9": "QZN"}.get(type_of_sale.strip()[:1], "Korvane")


def child(parent, name, text=""):
    element = etree.SubElement(parent, name)
    if text:
        element.text = text
    return element


def component(components, sequence, kind, part, quantity, price, description, supplier, sale, preorder):
    element = etree.SubElement(components, "COMPONENT", SEQUENCE=str(sequence), TYPE=kind, PARTNUMBER=part,
                               QUANTITY=quantity, PRICE=price)
    child(element, "DESCRIPTION", description)
    attributes = child(element, "ATTRIBUTES_LIST")
    child(attributes, "DELIVERYGROUP")
    child(attributes, "SUPPLIER", supplier)
    child(attributes, "TYPEOFSALE", sale)
    child(attributes, "PREORDERREQ", preorder)


def preorder_text(value):
    return {"Y": "1", "N": "0"}.get(value, value)


def items(section, loop_key):
    k = 1
    while section.get(f"{loop_key}:{k}"):
        yield k
        k += 1


def stored_text(blob):
    with zipfile.ZipFile(io.BytesIO(blob)) as archive:
        return archive.read("Tag").decode("cp1252")


def tag_element(tags, ini, machine, number):
    section = ini[f"partnumber{number}"]
    get = lambda key, default="": section.get(key, default)
    tag = child(tags, "TAG")
    attributes = child(tag, "ATTRIBUTES_LIST")
    relative = get("filename")[3:].replace("\\", os.sep)
    with open(os.path.join(machine, "drive_c", relative), "rb") as file:
        blob = file.read()
    product = etree.fromstring(stored_text(blob)).find(".//Product")
    child(attributes, "BUILDVERSION", product.get("TagVersion"))
    child(attributes, "MARKFOR", get("markfor"))
    child(attributes, "PDSG", get("pdsg"))
    child(attributes, "LEGACY_TAGID", product.get("lTagID"))
    child(attributes, "BLOB").text = etree.CDATA(base64.b64encode(blob).decode("ascii"))
    units = child(tag, "BASEUNITS")
    part = get("partnumber")
    unit = etree.SubElement(units, "BASEUNIT", PARTNUMBER=part, ID=part[:3] if len(part) > 2 else "UNK",
                            QUANTITY=get("quantity", "1"), PRICE=get("masterprice"), SEQUENCE="1")
    child(child(unit, "EXTENDED_DESCRIPTIONS"), "DESCRIPTION", get("description"))
    listed = child(unit, "ATTRIBUTES_LIST")
    child(listed, "DELIVERYGROUP")
    child(listed, "SUPPLIER", brand(get("supplier"), get("typeofsale")))
    child(listed, "TYPEOFSALE", get("typeofsale"))
    child(listed, "TON", get("ton"))
    child(listed, "CFM", str(int(float(get("cfm")) + 0.5)))
    for slot in range(1, 6):
        child(listed, f"ATTRIBUTE{slot}", get(f"attribute{slot}"))
    child(listed, "PREORDERREQ", "1" if get("preorderreq", "N") == "Y" else "0")
    child(listed, "ETO", "1" if get("eto") == "Y" else "0").set("ETODESCRIPTION", "")
    components = child(unit, "COMPONENTS")
    sequence = 0
    accessories = ini.get(f"accessory{number}", {})
    for k in items(accessories, "partnumber"):
        sequence += 1
        value = lambda key: accessories.get(f"{key}:{k}", "")
        component(components, sequence, "ACCESSORY", value("partnumber"), value("quantity"), value("masterprice"),
                  value("description"), brand(value("supplier"), value("typeofsale")), value("typeofsale"),
                  preorder_text(value("preorderreq")))
    warranties = ini.get(f"warranty{number}", {})
    for k in items(warranties, "name"):
        sequence += 1
        value = lambda key: warranties.get(f"{key}:{k}", "")
        component(components, sequence, "WARRANTY", value("name"), value("quantity"), value("masterprice"),
                  value("description"), "Korvane", "", preorder_text(value("preorderreq")))
    child(unit, "SAP_XML")


def main():
    machine, output = sys.argv[1:3]
    ini = read_ini(os.path.join(machine, "drive_c", "Korvane", "TQ5-VX", "Temp", "QBOutput.ini"))
    project = etree.fromstring('<PROJECT><ATTRIBUTES_LIST><JOB LEGACY_PROJECTNAME="" /><CUSTOMER/><SALESPERSON/>'
                               "<BRAND/></ATTRIBUTES_LIST><TAGS></TAGS></PROJECT>")
    tags = project.find("TAGS")
    number = 1
    while ini.get(f"partnumber{number}", {}).get("partnumber"):
        tag_element(tags, ini, machine, number)
        number += 1
    with open(output, "wb") as file:
        file.write(etree.tostring(project, encoding="utf-8") + b"\r\n")


main()
