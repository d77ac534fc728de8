"""Exports the units of a project as a quote document, and shows how failures look.

    quote.py [PROJECT] [--early-bound]
"""

import sys
import xml.etree.ElementTree as ElementTree

import pythoncom
import win32com.client
import win32com.client.dynamic
import win32com.client.gencache


def main():
    names = [argument for argument in sys.argv[1:] if not argument.startswith("--")]
    project_name = names[0] if names else "Riverside Clinic"
    # Early bound, a module is made of the type library, once, and members are found without asking the object. Then a
    # parameter by reference is handed back behind the reply.
    early_bound = "--early-bound" in sys.argv
    create = win32com.client.gencache.EnsureDispatch if early_bound else win32com.client.dynamic.Dispatch
    parvex = create("Parvex.LegacyORLAPull")

    def reply_of(answer):
        return answer[0] if isinstance(answer, tuple) else answer

    # 1. Pull takes a command as a document and answers with a document.
    command = win32com.client.dynamic.Dispatch("MSXML2.DOMDocument.3.0")
    setattr(command, "async", False)
    command.loadXML("<COMMAND><NAME>getProjectList</NAME></COMMAND>")
    reply = reply_of(parvex.Pull(command))
    nodes = reply.selectNodes("//PROJECT/NAME")
    for i in range(nodes.length):
        print("Project: " + nodes.item(i).text)

    # 2. PullNGORLA takes and gives text. Texts go into a command through a document, so that they are escaped.
    export = ElementTree.fromstring(
        "<COMMAND><NAME>getHybrisXMLNoUI</NAME><PARAMETER><NAME>selection</NAME><VALUE>"
        "<UserSelectionTransfer><ProjectName/></UserSelectionTransfer></VALUE></PARAMETER></COMMAND>")
    export.find(".//ProjectName").text = project_name
    quote = ElementTree.fromstring(reply_of(parvex.PullNGORLA(ElementTree.tostring(export, encoding="unicode"))))
    print("Tags in the quote: %d" % len(quote.findall(".//TAG")))

    # 3. The codec is a class of its own.
    encoder = create("Parvex.cBinEncoder")
    print("Base64 of Man: " + encoder.Encode("Man"))

    # 4. A command that fails for a known reason is answered with returnError -1.
    failed = ElementTree.fromstring(reply_of(parvex.PullNGORLA("<COMMAND><NAME>noSuchCommand</NAME></COMMAND>")))
    print("Failed reply: %s %s" % (failed.findtext("returnError"), failed.findtext("errorMessage")))

    # 5. Everything else ends the call with an error.
    try:
        parvex.PullNGORLA("<COMMAND/>")
    except pythoncom.com_error as error:
        # hresult alone is DISP_E_EXCEPTION for a late-bound call; what was raised stands in excepinfo, where there is one.
        _, source, description, _, _, number = error.excepinfo or (0, "", "", "", 0, error.hresult)
        print("Failed call: %X from %s: %s" % (number & 0xFFFFFFFF, source, description))


main()
