#!/usr/bin/env python3
"""Makes a machine folder whose quote builder has already left a selection, for measuring the export.

  make_selection.py FOLDER TAGS ACCESSORIES BLOB_BYTES [FURTHER]

FURTHER (0 by default) is how many entries besides the tag each blob has; the export writes them beside the blob.

The workflow program is left out on purpose: starting it fails at once, so what is measured is the export alone.
The command to send is FOLDER/getHybrisXML.xml.
"""
import io
import os
import random
import sys
import zipfile

ROOT = "C:\\Korvane\\TQ5-VX\\"


def blob(number, size, further, rng):
    stored = f'<Tag><Product TagVersion="3.9N" lTagID="{number}"/></Tag>\r\n'
    filler = rng.randbytes(max(0, size - len(stored) - 150)).hex()[: max(0, size - len(stored) - 150)]
    text = io.BytesIO()
    with zipfile.ZipFile(text, "w", zipfile.ZIP_STORED) as archive:
        archive.writestr(zipfile.ZipInfo("Tag", (2020, 1, 1, 0, 0, 0)), stored.replace("/></Tag>", f'/><D>{filler}</D></Tag>'))
        for k in range(1, further + 1):
            archive.writestr(zipfile.ZipInfo(f"Unit{number}-{k}.xml", (2020, 1, 1, 0, 0, 0)), f"<Unit id='{number}'/>")
    return text.getvalue()


def tag_sections(number, accessories, out):
    out.append(f"[PartNumber{number}]")
    out.append(f"PartNumber=38AUZ{number:05d}")
    out.append("PDSG=38AQ1")
    out.append(f"MarkFor=RTU-{number}")
    out.append(f"FileName={ROOT}Blobs\\tag{number}.blb")
    out.append(f"Description=Packaged rooftop unit {number} & curb")
    out.append("Quantity=2\r\nMasterPrice=12345.67\r\nSupplier=Korvane\r\nTypeOfSale=1A\r\nTon=12.5\r\nCFM=4999.6")
    out.append("PreOrderReq=N\r\nETO=N\r\nAttribute1=a1\r\nAttribute2=a2\r\nBaseUnit1=BU1\r\nBaseUnit2=")
    out.append(f"[Accessory{number}]")
    for k in range(1, accessories + 1):
        out.append(f"PartNumber:{k}=CRACC{number:04d}{k:03d}")
        out.append(f"Description:{k}=Accessory <{k}> of unit {number}")
        out.append(f"MasterPrice:{k}={k}.50\r\nQuantity:{k}=1\r\nTypeOfSale:{k}=2B\r\nSupplier:{k}=Tessel")
        out.append(f"MarkFor:{k}=RTU-{number}\r\nBaseUnit2:{k}=BASE1\r\npreorderreq:{k}=Y")
    out.append(f"[Warranty{number}]")
    out.append("Name:1=W5Y\r\nQuantity:1=1\r\nDescription:1=Five years\r\nMasterPrice:1=99\r\nBaseUnit2:1=BASE1\r\npreorderreq:1=N")


def main():
    folder, tags, accessories, size = sys.argv[1], *map(int, sys.argv[2:5])
    further = int(sys.argv[5]) if len(sys.argv) > 5 else 0
    rng = random.Random(1)
    root = os.path.join(folder, "drive_c", "Korvane", "TQ5-VX")
    for name in ("Bin", "Temp", "Projects", "Blobs"):
        os.makedirs(os.path.join(root, name), exist_ok=True)
    with open(os.path.join(folder, "registry.reg"), "w", encoding="ascii", newline="\r\n") as reg:
        path = ROOT.replace("\\", "\\\\") + "Bin\\\\"
        reg.write(f'REGEDIT4\n\n[HKEY_LOCAL_MACHINE\\SOFTWARE\\Korvane\\KDQ47]\n"BinPath"="{path}"\n')
    lines = ["[Header]", "Action=OK"]
    for number in range(1, tags + 1):
        tag_sections(number, accessories, lines)
        with open(os.path.join(root, "Blobs", f"tag{number}.blb"), "wb") as file:
            file.write(blob(number, size, further, rng))
    with open(os.path.join(root, "Temp", "QBOutput.ini"), "w", encoding="cp1252", newline="") as ini:
        ini.write("\r\n".join(lines) + "\r\n")
    with open(os.path.join(folder, "getHybrisXML.xml"), "w", encoding="ascii") as command:
        command.write("<COMMAND><NAME>getHybrisXML</NAME></COMMAND>")


main()
