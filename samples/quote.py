"""Exports the units of a project as a quote document, and shows how failures look."""

import sys
import xml.etree.ElementTree as ElementTree

import pythoncom
import win32com.client


def main():
    project_name = sys.argv[1] if len(sys.argv) > 1 else "Riverside Clinic"
    parvex = win32com.client.Dispatch("Parvex.LegacyORLAPull")

    # 1. Pull takes a command as a document and answers with a document.
    command = win32com.client.Dispatch("MSXML2.DOMDocument.3.0")
    setattr(command, "async", False)
    command.loadXML("<COMMAND><NAME>getProjectList</NAME></COMMAND>")
    reply = parvex.Pull(command)
    for node in reply.selectNodes("//PROJECT/NAME"):
        print("Project: " + node.text)

    # 2. PullNGORLA takes and gives text. Texts go into a command through a document, so that they are escaped.
    export = ElementTree.fromstring(
        "<COMMAND><NAME>getHybrisXMLNoUI</NAME><PARAMETER><NAME>selection</NAME><VALUE>"
        "<UserSelectionTransfer><ProjectName/></UserSelectionTransfer></VALUE></PARAMETER></COMMAND>")
    export.find(".//ProjectName").text = project_name
    quote = ElementTree.fromstring(parvex.PullNGORLA(ElementTree.tostring(export, encoding="unicode")))
    print("Tags in the quote: %d" % len(quote.findall(".//TAG")))

    # 3. The codec is a class of its own.
    encoder = win32com.client.Dispatch("Parvex.cBinEncoder")
    print("Base64 of Man: " + encoder.Encode("Man"))

    # 4. A command that fails for a known reason is answered with returnError -1.
    failed = ElementTree.fromstring(parvex.PullNGORLA("<COMMAND><NAME>noSuchCommand</NAME></COMMAND>"))
    print("Failed reply: %s %s" % (failed.findtext("returnError"), failed.findtext("errorMessage")))

    # 5. Everything else ends the call with an error.
    try:
        parvex.PullNGORLA("<COMMAND/>")
    except pythoncom.com_error as error:
        number, source = error.excepinfo[5], error.excepinfo[1]
        print("Failed call: %X from %s" % (number & 0xFFFFFFFF, source))


main()
