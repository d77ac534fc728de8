#!/usr/bin/env python3
"""Makes the seeds of a fuzz target, small inputs that lead into its code: make_seeds.py TARGET FOLDER.

The same seeds every time, at least 50 a target. How an input is read stands at the head of the target's source.
"""

import io
import json
import pathlib
import random
import shutil
import struct
import sys
import warnings
import zipfile
import zlib

NUL = b"\0"


# --- base64 ---

def base64_seeds(chance):
    texts = [b"", b"M", b"Ma", b"Man", b"TWFu", b"TWFu\r\nTWE=", b"TQ==", b"TQ=", b"=", b"====", b"\r\n", b"\r", b"\n",
             b"\r\r\n",
             b"A\rB\nC", b"T W F u", b"TWFu\r\n", b"\r\nTWFu", b"\r=\n", b"+/+/", b"-_-_", "\u20ac".encode(),
             "\U0001f4be".encode(), b"\xff\xfe", b"\xc3(", b"\xed\xa0\x80", b"A\xc3",
             "\u0141\u0141\u0141\u0141".encode(), b"\0\0\0",
             bytes(range(256))]
    for length in (31, 32, 33, 63, 64, 65, 76, 95, 96, 97):
        texts.append(bytes(chance.choice(b"ABCxyz019+/") for _ in range(length)))
        texts.append(bytes(chance.randrange(256) for _ in range(length)))
    texts.append(b"\r\n".join([b"TWFu" * 19] * 4))
    return [bytes([number % 8]) + text for number, text in enumerate(texts)]


# --- private_profile ---

def private_profile_seeds(chance):
    bodies = [b"", b"\r\n", b"[S]", b"[S]\r\n", b"[S]\r\nk=v\r\n", b"[s]\nK = v \n", b"k=v\r\n[S]\r\nk=w",
              b"[S]\r\nk=1\r\nk=2\r\n",
              b"[S]\r\nk=1\r\n[T]\r\n[S]\r\nk=2", b"[S\r\nk=v", b"[S]x]\r\nk=v", b"[S] ; c\r\nk=1;2",
              b"[ S ]\r\n k\t=\tv", b"[]\r\nk=v",
              b"[S]\r\n=v", b"[S]\r\nk", b"[S]\r\nk=", b"[S]\r\nk=\"v\"", b"[S]\r\nk='v", b"[S]\rk=v\r",
              b"[S]\r\r\nk=v", b"[S]\n\rk=v",
              b"[S]\r\nk=a\0b", b"[S\0]\r\nk\0x=v", b"\x1a[S]\r\nk=v\x1a", b"[S]\r\n\xe9=\xc9", b"[\xc4]\r\nk=v",
              b"[S]\r\n;k=v\r\nk=w",
              b"[S]\r\n" + b"k=v\r\n" * 30, b"[S]\r\n" + b"x" * 200 + b"=1\r\nk=2", b"\r\n" * 70 + b"[S]\r\nk=v",
              b" " * 63 + b"[S]\r\nk=v", b"[S]" + b" " * 61 + b"\nk=v", b"[S]\r\nk==v", b"[S]\r\nk = = "]
    inputs = []
    for number, body in enumerate(bodies):
        inputs.append(b"S\nk\nother\nnew\n" + body)
        if number % 3 == 0:
            inputs.append(b"S\nk\nother\nnew\n\xef\xbb\xbf" + body)
            inputs.append(b"s\nK\nk\n\xe9\n\xff\xfe" + body.decode("latin-1").encode("utf-16-le"))
            inputs.append(b"\xc4\n\xc9\nk\n\n\xfe\xff" + body.decode("latin-1").encode("utf-16-be"))
    for _ in range(12):
        lines = [chance.choice([b"[S]", b"[T]", b"k=1", b"K = 2", b"other=3", b"", b" ", b";x",
                                b"y"]) for _ in range(12)]
        inputs.append(b"T\nk\nother\nv\n" + chance.choice([b"\r\n", b"\n", b"\r"]).join(lines))
    return inputs


# --- xml ---

def xml_seeds(_):
    documents = [
        "<a/>", "<a></a>", "<a> x </a>", "<a><b/> <b/></a>", "<a b='1' c=\"2\"/>", "<a><![CDATA[x]]></a>",
        "<a><![CDATA[]]></a>",
        "<a><![CDATA[x]]]]><![CDATA[>]]></a>", "<a><!-- c --></a>", "<!-- c --><a/><!-- d -->", "<a><?p i?></a>",
        "<?p i?><a/>",
        "<?xml version='1.0'?><a/>", "<?xml version='1.0' encoding='windows-1252'?><a>\u20ac</a>",
        "<?xml version='1.0' encoding='iso-8859-1'?><a>\u20ac</a>", "<?xml version='1.0' encoding='UTF-16'?><a/>",
        "<?xml version='1.0' encoding='nobody-knows'?><a/>", "<?xml version='1.0' standalone='yes'?><a/>",
        "<?xml version='1.1'?><a/>",
        "<!DOCTYPE a><a/>", "<!DOCTYPE a [<!ENTITY e 'x'>]><a>&e;</a>", "<!DOCTYPE a [<!ENTITY e 'x'>]><a b='&e;'/>",
        "<!DOCTYPE a [<!ENTITY e '&#38;'>]><a>&e;</a>", "<!DOCTYPE a [<!ENTITY e '<b/>'>]><a>&e;</a>",
        "<!DOCTYPE a [<!ENTITY % p '<!ENTITY e \"x\">'>%p;]><a>&e;</a>", "<!DOCTYPE a SYSTEM 'a.dtd'><a/>",
        "<!DOCTYPE a [<!ENTITY e SYSTEM 'a.txt'>]><a>&e;</a>", "<!DOCTYPE a [<!ATTLIST a b CDATA 'd'>]><a/>",
        "<!DOCTYPE a [<!ATTLIST a i ID #IMPLIED>]><a i='1'/>", "<!DOCTYPE a [<!ATTLIST a b NMTOKENS ' x  y '>]><a/>",
        "<!DOCTYPE a [<!ELEMENT a (b)><!NOTATION n SYSTEM 'n'>]><a><b/></a>", "<a xmlns='u'><b/></a>",
        "<p:a xmlns:p='u'><p:b p:c='1'/></p:a>", "<a xmlns:p='u'><b xmlns:p='v'><p:c/></b><p:c/></a>",
        "<a xml:space='preserve'> <b/> </a>",
        "<a xml:space='preserve'><b xml:space='default'> <c/> </b> </a>", "<a xml:lang='en'/>",
        "<a>&amp;&lt;&gt;&quot;&apos;</a>",
        "<a>&#13;&#10;&#9;&#x20AC;</a>", "<a>&#13;&#13;&#10;x</a>", "<a b='&#13;&#10;&#9;'/>", "<a>\r\nx\ry\n</a>",
        "<a b='x\r\n\ty'/>", "<a>x<b/>y</a>",
        "<a>x <b/> y</a>", "<a> <![CDATA[ ]]> </a>", "<a>\U0001f4be</a>", "<\u00e9l\u00e9ment/>", "<a", "<a>", "</a>",
        "<a/><b/>", "x<a/>",
        "<a>&x;</a>", "<p:a/>", "<a b='1' b='2'/>", "<a>]]></a>", "<a>\u0001</a>", "", " ", "<a>" * 30 + "</a>" * 30,
        "<COMMAND><NAME>n</NAME><PARAMETER><NAME>p</NAME><VALUE>v</VALUE></PARAMETER></COMMAND>"]
    expressions = ["//*", "a", "//a/@b", ".//text()", "//b[1]", "//COMMAND/PARAMETER[NAME='p']/VALUE", "id('1')",
                   "//comment()", "[",
                   "count(//a)", "descendant::b | //@*", "ancestor-or-self::node()"]
    inputs = [expressions[number % len(expressions)].encode() + NUL + text.encode() for number,
              text in enumerate(documents)]
    inputs += [b"//*" + NUL + b"\xff\xfe" + "<a>x</a>".encode("utf-16-le"),
               b"//*" + NUL + b"\xfe\xff" + "<a>x</a>".encode("utf-16-be"),
               b"//*" + NUL + b"\xef\xbb\xbf<a/>",
               b"//*" + NUL + b"<?xml version='1.0' encoding='windows-1252'?><a>\x80\x81</a>"]
    return inputs


# --- commands ---

COMMANDS = {
    "getProjectList": [], "archiveProject": ["projectName", "archiveFile"],
    "retrieveProject": ["archiveFile", "newProjectName"],
    "addProject": ["projectName"], "deleteProject": ["projectName"],
    "copyProject": ["sourceProject", "destinationProject"],
    "getProjectProperties": ["projectName"], "setProjectProperties": ["projectName", "data"],
    "renameProject": ["projectName", "newProjectName"], "rebuildAllTags": ["projectName"],
    "getTagList": ["projectName"],
    "getTags": ["projectName", "tagList"], "renameTag": ["projectName", "tagList"],
    "deleteTag": ["projectName", "tagList"],
    "newTag": ["projectName", "tagName", "pdsg"], "copyTag": ["projectName", "tagList", "destinationProject"],
    "configureTag": ["projectName", "tagID", "pdsg"], "getHybrisXML": [], "getHybrisXMLNoUI": ["selection"],
    "getReport": ["projectName", "reportName", "tagList"], "getReports": ["projectName", "dataList"],
    "getSubmittal": ["projectName", "dataList"], "getAvailableReports": ["projectName", "pdsgFilter"],
    "getOptions": [],
    "setOptions": ["data"], "RebuildTag": ["projectName", "data"], "getprojectlist": [], "": []}

VALUES = {
    "projectName": "Tower", "newProjectName": "Mill", "destinationProject": "Mill", "sourceProject": "Tower",
    "pdsg": "RTU47",
    "archiveFile": "C:\\Korvane\\TQ5-VX\\Archives\\a.E3A", "tagName": "RTU-1", "tagID": "71",
    "reportName": "Performance",
    "selection": "<UserSelectionTransfer><ProjectName>Tower</ProjectName></UserSelectionTransfer>",
    "data": "<PROJECT><COMPANYNAME>Lindqvist</COMPANYNAME><TAGS><TAG><ATTRIBUTES_LIST><PDSG>RTU47</PDSG>"
            "<BLOB>TWFu</BLOB></ATTRIBUTES_LIST></TAG></TAGS></PROJECT>",
    "tagList": "<TAGS><TAG><TAGINDEXID>71</TAGINDEXID><NAME>RTU-1</NAME><PDSG>RTU47</PDSG></TAG></TAGS>",
    "dataList": "<DATA><DATATYPE>1</DATATYPE><TAG><NAME>RTU-1</NAME></TAG></DATA>"}


def command(name, values):
    parameters = "".join(f"<PARAMETER><NAME>{key}</NAME><VALUE>{value}</VALUE></PARAMETER>" for key,
                         value in values.items())
    return f"<COMMAND><NAME>{name}</NAME>{parameters}</COMMAND>".encode()


def journal(answers):
    return "\n".join(json.dumps({"kind": "router", **answer}) for answer in answers).encode()


def commands_seeds(_):
    tags = "<TAGS><TAG><NAME>RTU-1</NAME><PDSG>RTU47</PDSG>" \
           "<TAGINDEXID>71</TAGINDEXID><TAGVERSION>4.70.0</TAGVERSION></TAG></TAGS>"
    project = "<PROJECT><NAME>Tower</NAME><FOLDER>C:\\Korvane\\TQ5-VX\\Projects\\Tower</FOLDER></PROJECT>"
    willing = journal([{"answer": answer} for answer in (tags, project, tags, project, "True", "<x/>")])
    refusing = journal([{"answer": "", "success": False}])
    failing = journal([{"error": {"number": "0x800A01AD", "source": "router", "description": "gone"}}])
    inputs = []
    for name, keys in COMMANDS.items():
        values = {key: VALUES[key] for key in keys if key in VALUES}
        inputs.append(willing + NUL + command(name, values))
        inputs.append(refusing + NUL + command(name, {}))
    inputs += [failing + NUL + command("getProjectList", {}), NUL, b"not json" + NUL, willing + NUL + b"<COMMAND/>",
               willing + NUL + b"no markup",
               willing + NUL + command("newTag", {"projectName": "a'b", "tagName": "x" * 80}),
               willing + NUL + NUL.join(command(name, VALUES) for name in ("newTag", "copyTag", "renameTag",
                                                                           "deleteTag")),
               willing + NUL + NUL.join(command(name, VALUES) for name in ("getReport", "getReports", "getSubmittal"))]
    return inputs


# --- command_sequence ---

def command_sequence_seeds(chance):
    def sent(name, **changes):
        values = {**VALUES, "projectName": "Riverside Clinic", "sourceProject": "Riverside Clinic", **changes}
        values["selection"] = values["selection"].replace("Tower", "Riverside Clinic")
        parameters = {key: values[key] for key in COMMANDS[name] if key in values}
        return chance.choice([b"P", b"N"]) + command(name, parameters) + NUL

    def laid(path, content):
        return b"F" + path.encode() + NUL + content + NUL

    export = sent("getHybrisXMLNoUI")
    application = "Korvane/TQ5-VX/"
    inputs = [sent(name) for name in COMMANDS if name]
    for name in COMMANDS:
        if name:
            inputs.append(sent("copyProject") + sent(name) + b"L" + sent(name, projectName="Mill") + export)
    for path, content in (("Temp/QBOutput.ini", b"[Header]\r\nAction=ok\r\n"), ("Projects/Riverside Clinic/units.json", b"{}"),
                          ("Projects/Riverside Clinic/units.json", b'{"units":[{"tagId":4294967296}]}'),
                          ("Projects/Riverside Clinic/project.mdb", b"\0" * 4096), ("Bin/Options.xml", b"<Tools/>"),
                          ("Bin/Options.xml", b"<Tools"), ("Bin/Tools.xml", b""), ("Bin/UIKeys.txt", b"a\r\n" * 50),
                          ("Projects/Riverside Clinic/TQ5.ini", b"[Contact]\r\nCompanyName=x\r\n")):
        inputs.append(laid(application + path, content) + export)
        inputs.append(export + laid(application + path, content) + b"L" + sent("RebuildTag") + export)
    for _ in range(10):
        inputs.append(b"".join(sent(name) for name in chance.sample([name for name in COMMANDS if name], 8)))
    return inputs


# --- archive ---

def archive_of(entries):
    """Of (name, bytes) pairs."""
    stream = io.BytesIO()
    with warnings.catch_warnings(), zipfile.ZipFile(stream, "w") as archive:
        warnings.simplefilter("ignore")  # one name twice is meant
        for number, (name, content) in enumerate(entries):
            info = zipfile.ZipInfo(name)
            info.compress_type = zipfile.ZIP_DEFLATED if number % 2 == 0 else zipfile.ZIP_STORED
            archive.writestr(info, content)
    return stream.getvalue()


def archive_seeds(chance):
    tag = b'<Document><Product TagVersion="4.70" lTagID="7"/></Document>\r\n'
    good = archive_of([("Tag", tag), ("folder/", b""), ("folder/a.dat", b"a" * 40)])
    inputs = [good, archive_of([]), archive_of([("only", b"SAPDATA")]), b"", b"PK", b"not an archive", good[:-1],
              good[20:], good + good]
    names = ["../up", "/root", "C:\\x", "a/../../b", "nul", "a:b", "a\\b", "x" * 250, "\u20ac", "dot.", "~1", "A/tag",
             "tag.blb", "TAG.BLB",
             "tag.blb/x", "a//b", "./a", "...", " a", "con.txt"]
    inputs += [archive_of([("Tag", tag), (name, b"x")]) for name in names]
    inputs += [archive_of([("a", b""), ("A", b"")]), archive_of([("a", b""), ("a/b", b"")]),
               archive_of([("n", b"\0" * 5000)])]
    folders = [["a/"], ["a/", "a/b/", "a/b/c.dat"], ["a/b/c/d/e.dat"], ["a/b.dat", "A/c.dat"], ["a/b/", "a\\c/", "a\\c\\d"],
               ["a/", "a"], ["a", "a/"], ["a./b", "a/c"], ["x~1/", "x~1/y~1"], ["a/" * 127], ["a/" * 60 + "b", "a/" * 61],
               ["tag.blb/"], ["Tag/"], ["Tag/Tag"], ["con/a"], ["a/con.txt/b"], [f"{number}/" for number in range(40)],
               [f"{number}/a" for number in range(600)], [f"d/{number}" for number in range(60)]]
    inputs += [archive_of([(name, b"" if name.endswith("/") else b"x") for name in names]) for names in folders]
    with_comment = bytearray(good) + b"comment"
    struct.pack_into("<H", with_comment, len(good) - 2, 7)
    inputs.append(bytes(with_comment))
    directory = good.index(b"PK\1\2")
    for at in (8, 10, 16, 20, 24, 28, 30, 32, 34, 38, 42):
        changed = bytearray(good)
        struct.pack_into("<H", changed, directory + at, 0xFFFF)
        inputs.append(bytes(changed))
    for _ in range(10):
        changed = bytearray(good)
        changed[chance.randrange(len(changed))] ^= 1 << chance.randrange(8)
        inputs.append(bytes(changed))
    return inputs


# --- jet ---

def damage(page, place, how, value):
    return struct.pack("<BHBB", page, place, how, value)


def jet_seeds(chance):
    inputs = [bytes([number]) for number in range(5)]
    inputs += [bytes([number]) + struct.pack("<H", 64 * pages + part) for number in (0, 1, 3, 4) for pages in (0, 1, 3, 5,
                                                                                                           7)
               for part in (1, 33)]
    inputs += [b"\xff", b"\xff\0\1\0\0Standard Jet DB\0", b"\xff" + b"\0\1\0\0Standard Jet DB\0\1".ljust(4096, b"\0")]
    inputs.append(b"\xff" + b"\0\1\0\0Standard Jet DB\0\0".ljust(2048, b"\0"))
    for page in range(11):  # header, maps, catalogue, definitions and rows
        inputs.append(b"\0\0\0" + damage(page, 0, 0, page))
        inputs.append(b"\0\0\0" + damage(page, 2, 2, 1) + damage(page, 12, 0, 255))
        inputs.append(b"\3\0\0" + damage(page, 2, 2, 1) + damage(page, 8, 0, 255))
        inputs.append(b"\3\0\0" + damage(page, 2047, 1, 255) + damage(page, 2040, 0, chance.randrange(256)))
        inputs.append(b"\1\0\0" + b"".join(damage(page, chance.randrange(200), 1,
                                                  1 << chance.randrange(8)) for _ in range(4)))
    return inputs


# --- export ---

def export_seeds(chance):
    tag = b'<Document><Product TagVersion="4.70" lTagID="7"/><SapData><x/></SapData></Document>\r\n'
    unit = b"[PartNumber1]\r\nPartNumber=A\r\nPDSG=RTU47\r\nMarkFor=RTU-1\r\nFileName=C:\\a.blb\r\n" \
           b"Quantity=2\r\nMasterPrice=10.5\r\n"
    keys = [b"Description=d", b"Quantity=many", b"Supplier=Korvane", b"TypeOfSale=21", b"Ton=5", b"CFM=2000",
            b"PreOrderReq=Y", b"ETO=Y",
            b"Attribute1=x", b"BaseUnit1=BU1", b"BaseUnit1=BU2", b"BaseUnit2=ABCD2", b"BaseUnit2=AB", b"PDSG=XR",
            b"PDSG=XRC47",
            b"PDSG=SD347", b"FileName=C:\\b.blb", b"FileName=C:\\none", b"MarkFor=a'b", b"MarkFor=\xe9<&>"]
    outputs = [b"", b"[Header]\r\nAction=cancel\r\n", unit]
    outputs += [b"[PartNumber1]\r\n" + key + b"\r\nPartNumber=A\r\n" for key in keys]
    accessory = b"[Accessory1]\r\nPartNumber:1=x\r\nDescription:1=y\r\nQuantity:1=3\r\nMasterPrice:1=1\r\n"
    outputs += [unit + accessory + key + b"\r\n" for key in (
        b"BaseUnit1:1=BU2", b"BaseUnit1:1=BU1", b"BaseUnit2:1=ABCD1", b"BaseUnit2:1=AB", b"FileName:1=C:\\a.blb",
        b"FileName:1=C:\\b.blb",
        b"AccessoryType:1=W", b"PartNumber:2=z\r\nBaseUnit2:2=ABCD2")]
    warranty = b"[Warranty1]\r\nName:1=w\r\nPartNumber:1=x\r\nQuantity:1=1\r\n"
    outputs += [unit + warranty + key + b"\r\n" for key in (b"", b"BaseUnit2:1=ABCD", b"BaseUnit2:1=ABCD1",
                                                            b"BaseUnit2:1=A")]
    outputs += [unit + b"[ETO Description1]\r\nDescription:1=a\r\nDescription:2=b\r\n",
                unit + unit.replace(b"ber1]", b"ber2]"),
                unit + unit.replace(b"ber1]", b"ber3]"), unit + b"[Extended Description1]\r\nDescription:1=a\r\n",
                unit + b"[BlanketItem1]\r\nPartNumber:1=b\r\nQuantity:1=2\r\n"]
    blobs = [b"", archive_of([("Tag", tag)]), archive_of([("one", b"<SAPDATA>x</SAPDATA>")]), b"no archive",
             archive_of([("../x", b"")])]
    projects = [b"Tower", b"", b"a \"b\"", b"None", b"\xe9"]
    texts = [tag, b"", b"<Document/>", b"<SAPDATA/>", b"no markup",
             b'<d><Product TagVersion="1"/><SAPDATA a="&lt;"/></d>']
    inputs = [NUL.join([chance.choice(projects), output, chance.choice(texts),
                        chance.choice(blobs)]) for output in outputs]
    inputs += [NUL.join([project, unit, text, blob]) for project, text,
               blob in zip(projects * 4, texts * 4, blobs * 4)][:20]
    return inputs


# --- case ---

def case_facts(**changes):
    facts = {"format": 1, "product": "Parvex", "version": "1", "platform": "Windows", "bitness": 32, "codePage": 1252,
             "program": "C:\\host.exe", "processId": 7, "threadId": 8, "machine": {"xml": "x", "router": {"place": "p"}},
             "entryPoint": "Pull", "command": "getTags", "thread": {"binPath": "", "iniTarget": None},
             "instance": {"reportServer": None, "driving": "", "tagNames": {"counter": 0, "taken": [["a", "b"]]}},
             "started": "2026-11-22T10:00:00Z", "ended": "2026-11-22T10:00:01Z", "microseconds": 1000000,
             "outcome": "error", "error": {"number": "0x800A005B", "source": "Parvex", "description": "d"}, "steps": 3,
             "namesOnly": ["drive_c/a"], "missing": [{"what": "w", "why": "y"}]}
    facts.update(changes)
    return facts


CASE_STEPS = [
    {"n": 1, "at": "before", "us": 1, "kind": "router", "request": "<R/>"},
    {"n": 1, "at": "after", "us": 2, "answer": "<A/>", "success": True},
    {"n": 2, "at": "before", "us": 3, "kind": "automation", "op": "call", "object": "o", "member": "m", "args": [1, "x"],
     "result": None},
    {"n": 2, "at": "after", "us": 4, "result": {"object": "o.m"}, "changed": [[1, "y"]]},
    {"n": 3, "at": "before", "us": 5, "kind": "process", "op": "start", "command": "c", "windowStyle": 1},
    {"n": 3, "at": "after", "us": 6, "started": True},
    {"n": 4, "at": "once", "us": 7, "kind": "process", "op": "end", "start": 3, "exitCode": 0,
     "left": [{"path": "C:\\a", "stored": "after/4/drive_c/a"}, {"path": "C:\\b", "stored": None}]},
    {"n": 5, "at": "before", "us": 8, "kind": "messageBox", "text": "t", "caption": "c", "icon": "stop"},
    {"n": 6, "at": "once", "us": 9, "kind": "registry", "op": "read", "key": "k", "value": "v", "result": "r"},
    {"n": 7, "at": "once", "us": 9, "kind": "file", "op": "isFile", "path": "C:\\a", "result": False},
    {"n": 8, "at": "after", "us": 9, "error": {"number": "0x800A0035", "source": "s", "description": "\u001b[2J"}},
    {"n": 9, "at": "once", "us": 9, "kind": "nested", "case": "other"}]


def unfinished_archive(entries):
    """Stored entries without a directory."""
    stream = b""
    for name, content in entries:
        stream += struct.pack("<IHHHHHIIIHH", 0x04034B50, 20, 0, 0, 0, 0x21, zlib.crc32(content), len(content),
                              len(content), len(name), 0) + name.encode() + content
    return stream


def case_seeds(chance):
    facts, steps = json.dumps(case_facts()).encode(), "\n".join(map(json.dumps, CASE_STEPS)).encode() + b"\n"
    whole = archive_of([("case.json", facts), ("command.xml", b"<COMMAND/>"), ("reply.xml", b"<R/>"),
                        ("journal.jsonl", steps), ("machine/registry.reg", b"\xff\xfe"), ("after/4/drive_c/a", b"a")])
    files = unfinished_archive([("machine/drive_c/a", b"abc"), ("machine/drive_c/b/", b""), ("after/1/drive_c/a", b"d")])
    inputs = [b"\0" + whole, b"\0", b"\0PK", b"\0" + archive_of([]), b"\1" + facts + NUL + steps + NUL + b"[S]\r\nk=v\r\n",
              b"\2" + facts + NUL + steps + NUL + files, b"\2" + facts + NUL + steps[:-20] + NUL + files[:-3], b"\2"]
    inputs += [b"\0" + archive_of([("case.json", facts), (name, b"x")]) for name in (
        "../up", "/root", "C:\\x", "case.json", "CASE.JSON", "reply.xml/x", "machine/a/../../b", "machine/nul", "after/1")]
    odd = [None, True, -1, 1.5, "\u001b[2J", [], {}, [[1]], {"a": {"b": []}}, 2 ** 64]
    for number, key in enumerate(case_facts()):
        inputs.append(b"\1" + json.dumps(case_facts(**{key: odd[number % len(odd)]})).encode() + NUL + steps + NUL)
    for number, step in enumerate(CASE_STEPS):
        for place, key in enumerate(step):
            changed = json.dumps({**step, key: odd[(number + place) % len(odd)]}).encode()
            inputs.append(b"\2" + facts + NUL + changed + b"\n" + NUL + files)
    deep = b"[" * 3000 + b"]" * 3000
    inputs += [b"\1" + b'{"format":1,"x":' + deep + b"}" + NUL + NUL, b"\1" + facts + NUL + b'{"n":1,"at":"once","x":' + deep
               + b"}" + NUL]
    for _ in range(10):
        changed = bytearray(whole)
        changed[chance.randrange(len(changed))] ^= 1 << chance.randrange(8)
        inputs.append(b"\0" + bytes(changed))
    return inputs


# --- registry ---

def registry_seeds(chance):
    head = "Windows Registry Editor Version 5.00\r\n\r\n"
    local, user = "[HKEY_LOCAL_MACHINE\\SOFTWARE\\Korvane\\KDQ47]\r\n", "[HKEY_CURRENT_USER\\Software\\Parvex]\r\n"
    lines = ["", '"BinPath"="C:\\\\Korvane\\\\TQ5-VX\\\\Bin\\\\"\r\n', '@="default"\r\n', '"a"="say \\"x\\""\r\n',
             '"a"=hex(2):41,00,42,00,00,00\r\n', '"a"=hex(2):41,00,\\\r\n  42,00,00,00\r\n', '"a"=hex(1):41,00\r\n',
             '"a"=hex(2):4', '"a"=hex(2):\\', '"a"=hex(7):41,00,00,00,00,00\r\n', '"a"=dword:00000001\r\n', '"a"=-\r\n',
             '"a"="1"\r\n"A"="2"\r\n', '"a"="over\r\nlines"\r\n', '"a"="never ended', '"a', '"a"', "a=b", '; "a"="b"\r\n',
             '"a"="\\', '"\\"="x"\r\n', '"a"="\u20ac\u00e9"\r\n', '=""\r\n', "[", "[]", "[HKEY_CURRENT_USER", "[-", "\r"]
    deletions = [f"[-{key[1:]}" for key in (local, user)]
    texts = [head + key + line for key in (local, user) for line in lines]
    texts += [head + local + lines[1] + deletion for deletion in deletions] + [head, "REGEDIT4", "", head * 3]
    texts += [head + "[HKEY_LOCAL_MACHINE\\SOFTWARE\\WOW6432Node\\Korvane\\KDQ47]\r\n" + lines[1]]
    asked = [b"Software\\Parvex\0a\0", b"SOFTWARE\\KORVANE\\\\KDQ47\0BinPath\0", b"\0\0", b"\\\0@\0"]
    encodings = [lambda text: b"\xff\xfe" + text.encode("utf-16-le"), lambda text: b"\xef\xbb\xbf" + text.encode(),
                 lambda text: text.replace(head, "REGEDIT4\r\n\r\n").encode("cp1252", "replace"),
                 lambda text: b"\xfe\xff" + text.encode("utf-16-be")]
    inputs = [asked[number % 4] + b"text\0" + encodings[number % 3](text) for number, text in enumerate(texts)]
    inputs += [asked[0] + b"C:\\x \"y\"\0" + encode(texts[1])[:-chance.randrange(1, 9)] for encode in encodings]
    return inputs


# --- journal ---

def journal_seeds(chance):
    lines = [{"kind": "router", "answer": "<x/>"}, {"kind": "router", "request": "<R a='1'/>", "answer": "<A/>"},
             {"kind": "router", "request": "text", "answer": "", "success": False},
             {"kind": "router", "error": {"number": "0x800A01AD", "source": "router", "description": "gone"}},
             {"kind": "router"}, {"kind": "note", "about": "a", "text": "t"}, {"kind": "finding", "text": "t"},
             {"kind": "process", "op": "start"}, {"kind": "nobody knows"}, {"answer": "x"}]
    odd = [None, True, -1, 1.5, "\u001b[2J", [], {}, [[1]], {"number": 5}, 2 ** 64]
    journals = [json.dumps(line) for line in lines]
    for line in lines[:4]:
        journals += [json.dumps({**line, key: value}) for key in line for value in chance.sample(odd, 4)]
    whole = "\r\n".join(journals[:7]) + "\n\n  \n"
    journals += ["", "\ufeff" + whole, whole, "[" * 200, "{" * 200, '{"kind":"router","x":' + "[" * 99 + "]" * 99 + "}",
                 "not json", '{"kind":"router"', '{"kind":"\\ud800"}', whole.replace("\n", "\r")]
    requests = [b"\0", b"<R a='1'/>\0\0", b"text\0<R a=\"1\"></R>\0\0", b"<R\0x\0\0"]
    return [requests[number % 4] + text.encode() for number, text in enumerate(journals)]


# --- standin ---

def standin_seeds(chance):
    unit = {"tagId": 7, "keys": {"PartNumber": "P1", "MarkFor": "M1"},
            "stored": {"file": "a.blb", "place": "temp", "entries": [{"name": "Tag", "deflate": False, "text": "<T/>"}]},
            "extendedDescription": ["long", "longer"], "etoDescription": ["eto"],
            "accessories": [{"keys": {"PartNumber": "A1"}, "stored": {"file": "b.blb", "place": "project"}}],
            "warranties": [{"Name": "W1"}], "blanketItems": [{"PartNumber": "B1"}]}
    settings = {"workflow": {"cancel": True, "exitCode": 3, "writeNothing": False}, "router": {"refuse": ["getTags"]},
                "builder": {"missing": False, "cancelled": True, "failAt": "View", "polls": 3},
                "reportServer": {"missing": False, "failAt": "Reset", "makeReport": True}}
    odd = [None, True, -1, 1.5, "\u001b[2J", "..", "a\\b", [], {}, [[1]], {"a": {}}, 2 ** 64, -2 ** 63]
    inputs = [b"\0" + json.dumps({"units": units}).encode() for units in ([], [unit], [unit, unit], {}, None)]
    for key in unit:
        inputs += [b"\0" + json.dumps({"units": [{**unit, key: value}]}).encode() for value in chance.sample(odd, 5)]
    inputs.append(b"\1" + json.dumps(settings).encode())
    for key, part in settings.items():
        inputs.append(b"\1" + json.dumps({key: part}).encode())
        inputs += [b"\1" + json.dumps({key: {**part, name: chance.choice(odd)}}).encode() for name in part]
    deep = b"[" * 200 + b"]" * 200
    inputs += [b"\0" + text for text in (b"", b"{", deep, b'{"units":' + deep + b"}", b'{"units":[]', b'\xff', b"{}{}")]
    return inputs


# --- show ---

def show_seeds(chance):
    component = '<COMPONENT TYPE="accessory" PARTNUMBER="A1" QUANTITY="2" PRICE="10.5"><DESCRIPTION>d</DESCRIPTION>' \
                "<ATTRIBUTES_LIST><SUPPLIER>s</SUPPLIER><PREORDERREQ>1</PREORDERREQ></ATTRIBUTES_LIST></COMPONENT>"
    unit = '<BASEUNIT SEQUENCE="1" PARTNUMBER="P" QUANTITY="1" PRICE="1000"><EXTENDED_DESCRIPTIONS><DESCRIPTION>x' \
           '</DESCRIPTION></EXTENDED_DESCRIPTIONS><ATTRIBUTES_LIST><TON>5</TON><ETO ETODESCRIPTION="e">1</ETO><ATTRIBUTE1>a' \
           f"</ATTRIBUTE1></ATTRIBUTES_LIST><SAP_XML>&lt;x/&gt;</SAP_XML><COMPONENTS>{component}</COMPONENTS></BASEUNIT>"
    tag = "<TAG><ATTRIBUTES_LIST><MARKFOR>RTU-1</MARKFOR><PDSG>RTU47</PDSG><LEGACY_TAGID>71</LEGACY_TAGID><BUILDVERSION>4" \
          f"</BUILDVERSION><BLOB>TWFu</BLOB></ATTRIBUTES_LIST><BASEUNITS>{unit}</BASEUNITS></TAG>"
    whole = '<PROJECT><ATTRIBUTES_LIST><JOB LEGACY_PROJECTNAME="Tower"/></ATTRIBUTES_LIST>' + f"<TAGS>{tag}</TAGS></PROJECT>"
    odd = ["", "?", "-1", "1e300", "0.005", "9" * 40, "\u20ac" * 70, "w" * 100, "&#x202E;", "&#27;[2J", "&#x85;", "&#9;"]
    changed = [whole.replace(old, new, 1) for old in ('"2"', ">RTU-1<", '"A1"', ">x<", ">TWFu<", '"1000"')
               for new in (value.join((old[0], old[-1])) for value in odd[:9])]
    changed = [text.replace(">&#27;", ">").replace("&#27;", "") for text in changed]
    changed += [whole.replace(part, part * count) for part in (component, unit, tag) for count in (0, 2, 3)]
    inputs = [whole, "<PROJECT/>", "<PROJECT><TAGS/></PROJECT>", "<a/>", "", "<PROJECT><TAGS><TAG/></TAGS></PROJECT>"]
    inputs = [text.encode() for text in inputs]
    inputs += [whole.encode() + NUL + text.encode() for text in changed]
    inputs += [text.encode() + NUL + chance.choice(changed).encode() for text in changed[:10]]
    return inputs


# --- lint ---

def lint_seeds(chance):
    names = ("addProject", "getReport", "getTags", "RebuildTag", "getHybrisXMLNoUI", "setOptions", "noSuchCommand", "AddProject")
    parameter = "<PARAMETER>\n<NAME>projectName</NAME><VALUE>A &amp; B</VALUE></PARAMETER>"
    tag = "<TAG><NAME>a</NAME><PDSG>b</PDSG><DATATYPE/></TAG>"
    whole = f"<COMMAND><NAME>getReport</NAME>{parameter}{tag}</COMMAND>"
    parts = (parameter * 2, parameter.lower(), "<PARAMETER/>", "<PARAMETERS>" + parameter + "</PARAMETERS>", tag, tag.lower(),
             "<!-- <COMMAND> -->", "<![CDATA[<A>]]>", "<?target <A> ?>", "<a b='>' c=\">\"/>", "&#112;&lt;&gt;", "\r\n \n",
             "<UserSelectionTransfer><ProjectName/></UserSelectionTransfer>")
    documents = [f"<COMMAND><NAME>{name}</NAME>{part}</COMMAND>" for name in names for part in chance.sample(parts, 6)]
    documents += [whole, "", "<", "<A/>", "<A><COMMAND/></A>", whole[:-12], whole.replace("COMMAND", "command"),
                  '<?xml version="1.0" encoding="iso-8859-1"?>' + whole, "<!DOCTYPE a [<!ENTITY e '<b/>'>]><a>&e;</a>",
                  "<a>" * 300 + "</a>" * 300]
    return [text.encode() for text in documents] + [whole.encode("utf-16"), whole.encode("utf-16-le")]


# --- open ---

def open_seeds(chance):
    texts = [b"<PROJECT><TAGS><TAG><ATTRIBUTES_LIST><BLOB>UEsDBA==</BLOB></ATTRIBUTES_LIST></TAG></TAGS></PROJECT>",
             b"<SAPDATA><CHARACTERISTIC NAME='a' VALUE='b'/></SAPDATA>", b"<a><b></a>",
             b"<COMMAND><NAME>getOptions</NAME><PARAMETER><NAME>n</NAME></PARAMETER></COMMAND>",
             b"<LegacyORLA><returnError>-1</returnError></LegacyORLA>", b"<Tools><Option/></Tools>", b"<?xml version='1.0'?><x/>",
             b"REGEDIT4\r\n[HKEY_LOCAL_MACHINE\\A]\r\n\"b\"=\"c\"\r\n@=\"\x1b\"\r\n", b"[a]\r\nb=c\r\n\x1b=\x9b\r\n",
             b"[Header]\r\nAction=OK\r\n[PartNumber1]\r\nPartNumber=A\r\n[Accessory1]\r\nPartNumber:1=B\r\n",
             b"[Header]\n[Partnumber1]\nfilename=x\n", b"a=b\nc=d\n", b'{"kind":"router","request":"<a/>"}\n{"kind":"no',
             b'{"a": [1, null], "\\u001b": {}}', b"[1, 2]", b"[" * 200, b"PK\3\4", b"", b"text"]
    texts += [text.decode("latin-1").encode("utf-16") for text in texts[:12]]
    texts.append(b"\0\1\0\0Standard Jet DB\0\1".ljust(4096 * 4, b"\0"))
    inputs = texts + archive_seeds(chance)[:30]
    inputs += [archive_of([("Tag", text), ("inner", archive_of([("a", text)]))]) for text in texts]
    inputs.append(archive_of([("case.json", b"{}"), ("journal.jsonl", b"")]))
    for text in texts[:12]:
        changed = bytearray(text)
        changed[chance.randrange(len(changed))] ^= 1 << chance.randrange(8)
        inputs.append(bytes(changed))
    return inputs


def main(target, folder):
    makers = {name[:-len("_seeds")]: maker for name, maker in globals().items() if name.endswith("_seeds")}
    if target not in makers:
        return f"no such target: {target}; there are {', '.join(makers)}"
    inputs = list(dict.fromkeys(makers[target](random.Random(zlib.crc32(target.encode())))))
    folder = pathlib.Path(folder)
    shutil.rmtree(folder, ignore_errors=True)
    folder.mkdir(parents=True)
    for number, content in enumerate(inputs):
        (folder / f"{number:03}").write_bytes(content)
    return 0 if len(inputs) >= 50 else f"only {len(inputs)} seeds for {target}"


if __name__ == "__main__":
    sys.exit(main(*sys.argv[1:]) if len(sys.argv) == 3 else __doc__)
