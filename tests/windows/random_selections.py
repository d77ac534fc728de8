"""Random selections give the same quote on both platforms, and the same files are left behind.

    random_selections.py NATIVE_BIN WINDOWS_BIN [COUNT [SEED]]

Selection number N of a seed is the same one each time: families, base units, accessories, warranties, archives stored in
either place, order configurations, engineered-to-order lines, and texts with whatever a line of an ini file can hold.
"""

import json
import os
import random
import sys
import tempfile
from pathlib import Path

import equal_replies
import wine

PROJECT = "Riverside Clinic"
FAMILIES = ["RTU47", "AHE47", "XRC47", "WSH47", "SD347", "FCB47", "38A47", "QRT52", "AB", "KDC47", "39M47", "Café1"]
TYPES_OF_SALE = ["", "1", "1A", "1B", "2C", "2X", "9", "3", "x"]
SUPPLIERS = ["", "Korvane", "Tessel", "qzn", "QZN", "Nobody & Sons", "Ødegård"]
BASE_UNITS = ["", "", "", "BU1", "BU2", "BU3", "UNIT2"]
ATTACHED_TO = ["", "", "", "UNIT", "UNIT", "UNIT2", "UNIT3", "BASEUNIT12"] * 5 + ["BU1"]  # a short one ends the export
WORDS = ["unit", "10 ton", "<b>", "&amp;", "&", "]]>", "'", '"quoted"', "a=b", ";no comment", "[Section]", "100 %",
         "½ in.", "€ 5", "Küche", "naïve", "Straße", "\\Temp\\x", "%PATH%", "--", "<!--", "?>", "\u00a0",
         "x" * 253, "y" * 254]
LONGEST = 254  # characters that a reader of the selection takes


def text(chance):
    return " ".join(chance.choices(WORDS, k=chance.choice([0, 1, 1, 2, 4])))[:LONGEST].strip()


def number(chance):
    return chance.choice(["", "0", "1", "2", "-3", "17", "32767", "32768", "99999999999", "1.5", "two", " 7 "])


def item(chance, names):
    values = {"Quantity": number, "MasterPrice": number, "Ton": number, "CFM": number,
              "TypeOfSale": lambda c: c.choice(TYPES_OF_SALE), "Supplier": lambda c: c.choice(SUPPLIERS),
              "BaseUnit1": lambda c: c.choice(BASE_UNITS), "BaseUnit2": lambda c: c.choice(ATTACHED_TO),
              "PreOrderReq": lambda c: c.choice(["Y", "N", "y", "1", ""]), "ETO": lambda c: c.choice(["Y", "N", ""]),
              "preorderreq": lambda c: c.choice(["Y", "N", "y", ""])}
    return {name: values.get(name, text)(chance) for name in names if chance.random() < 0.7}


def markup(chance, depth=0):
    """An order configuration's inside."""
    if depth > 3 or chance.random() < 0.4:
        return chance.choice(["", "a &amp; b", "&lt;", "5 &gt; 4", "Größe", "<![CDATA[<raw>]]>", " padded "])
    return "".join(f'<{name} V="{chance.choice(["", "1", "a &amp; b", "&quot;"])}">{markup(chance, depth + 1)}</{name}>'
                   for name in chance.choices(["MATERIAL", "CHARACTERISTIC", "A", "B.C", "_d"], k=chance.randint(1, 3)))


def stored(chance, name, pdsg, tag_id):
    document = (f'<Application PDSG="{pdsg}"><System><Product ProdName="{pdsg}" TagVersion="{chance.choice(["", "4.71.0"])}"'
                f' lTagID="{tag_id}"/></System>{"<SapData>" + markup(chance) + "</SapData>" if chance.random() < 0.3 else ""}'
                "</Application>")
    configuration = f"<SAPDATA>{markup(chance)}</SAPDATA>"
    entries = []
    kind = chance.random()
    if kind < 0.5:
        entries.append(("Tag", document))
    elif kind < 0.7:
        entries.append((chance.choice(["Config.xml", "UNITDA~1.XML"]), configuration))
    elif kind < 0.75:
        entries.append(("Tag", "no markup <"))
    for extra in chance.sample(["Drawing.dat", "aux.txt", "readme.", "lägeplan.txt"], k=chance.choice([0, 0, 1, 2])):
        entries.append((extra, text(chance)))
    return {"file": name, "place": chance.choice(["project", "temp"]),
            "entries": [{"name": entry, "deflate": chance.random() < 0.5, "text": content} for entry, content in entries]}


def unit(chance, index):
    tag_id = 5000 + index
    made = {"tagId": tag_id, "keys": {"PartNumber": f"P{index}-{chance.randint(1, 9)}", "PDSG": chance.choice(FAMILIES),
                                      "MarkFor": f"M-{index} {chance.choice(['', '&', 'é', '<'])}".strip()}}
    made["keys"].update(item(chance, ["Description", "Quantity", "MasterPrice", "Supplier", "TypeOfSale", "Ton", "CFM",
                                      "PreOrderReq", "ETO", "Attribute1", "Attribute3", "Attribute5", "BaseUnit1",
                                      "BaseUnit2"]))
    if chance.random() < 0.7:
        made["stored"] = stored(chance, f"tag{tag_id}.blb", made["keys"]["PDSG"], tag_id)
    for lines in ("extendedDescription", "etoDescription"):
        if chance.random() < 0.4:
            made[lines] = [text(chance) or "line" for _ in range(chance.randint(1, 4))]
    made["accessories"] = [accessory(chance, index, i) for i in range(chance.choice([0, 0, 1, 2, 5, 12]))]
    made["warranties"] = [{"Name": f"W{i}", **item(chance, ["Quantity", "Description", "MasterPrice", "BaseUnit2",
                                                           "preorderreq"])} for i in range(chance.choice([0, 0, 1, 3]))]
    if chance.random() < 0.2:
        made["blanketItems"] = [{"PartNumber": f"BQ{i}", **item(chance, ["Description", "Quantity"])} for i in range(2)]
    return made


def accessory(chance, unit_index, index):
    made = {"keys": {"PartNumber": f"A{index}", **item(chance, [
        "Description", "MasterPrice", "Quantity", "TypeOfSale", "MarkFor", "MarkFor2", "Supplier", "Attribute1",
        "Attribute2", "BaseUnit1", "BaseUnit2", "preorderreq"])}}
    if chance.random() < 0.15:
        made["stored"] = stored(chance, f"acc{unit_index}-{index}.blb", "KDC47", 0)
    return made


def selection(seed, index):
    chance = random.Random(f"{seed}-{index}")
    return {"units": [unit(chance, i) for i in range(chance.choice([0, 1, 1, 2, 3, 6]))]}


def export(machine, units, command):
    """The outcome, and the hand-over files as they are left. Files of the selection before are taken away."""
    temp = machine.application / "Temp"
    for left in temp.iterdir():
        left.unlink()
    project = machine.application / "Projects" / PROJECT
    for left in project.glob("*.blb"):
        left.unlink()
    (project / "units.json").write_text(json.dumps(units, ensure_ascii=False), encoding="utf-8")
    done = equal_replies.outcome(machine.send(equal_replies.PULL_NGORLA, command))
    return done, equal_replies.files(temp), equal_replies.files(project)


def where_they_part(first, second):
    """Both texts from a little before their first difference."""
    at = next((i for i, pair in enumerate(zip(first, second)) if pair[0] != pair[1]), min(len(first), len(second)))
    return [text[max(at - 120, 0):at + 80] for text in (first, second)]


def main():
    native_bin, windows_bin = sys.argv[1:3]
    count = int(sys.argv[3]) if len(sys.argv) > 3 else 300
    seed = sys.argv[4] if len(sys.argv) > 4 else "1"
    different = quotes = errors = 0
    with tempfile.TemporaryDirectory() as scratch:
        machines = [equal_replies.Native(native_bin, scratch), equal_replies.Windows(native_bin, windows_bin, scratch)]
        command = machines[0].machine / "commands" / "getHybrisXMLNoUI.xml"
        try:
            for index in range(count):
                units = selection(seed, index)
                seen = [export(machine, units, command) for machine in machines]
                quotes += "<TAG>" in seen[0][0]["reply"]
                errors += bool(seen[0][0]["errors"])
                if seen[0] != seen[1]:
                    different += 1
                    print(f"DIFFERENT: selection {index} of seed {seed}")
                    for machine, part in zip(machines, where_they_part(*map(str, seen))):
                        print(f"  {machine.name}: {part}")
        finally:
            wine.install_machine(native_bin, windows_bin, os.path.join(scratch, "as-it-was"))  # others want its tags
    print(f"{count} selections, {quotes} quotes with tags, {errors} errors, {different} differences")
    sys.exit(1 if different or not quotes else 0)


if __name__ == "__main__":
    main()
