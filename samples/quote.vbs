' Exports the units of a project as a quote document, and shows how failures look.
Option Explicit

Dim projectName
projectName = "Riverside Clinic"
If WScript.Arguments.Count > 0 Then projectName = WScript.Arguments(0)

Dim parvex
Set parvex = WScript.CreateObject("Parvex.LegacyORLAPull")

' 1. Pull takes a command as a document and answers with a document.
Dim command, reply, node
Set command = WScript.CreateObject("MSXML2.DOMDocument.3.0")
command.async = False
command.loadXML "<COMMAND><NAME>getProjectList</NAME></COMMAND>"
Set reply = parvex.Pull(command)
For Each node In reply.selectNodes("//PROJECT/NAME")
  WScript.Echo "Project: " & node.text
Next

' 2. PullNGORLA takes and gives text. Texts go into a command through a document, so that they are escaped.
command.loadXML "<COMMAND><NAME>getHybrisXMLNoUI</NAME><PARAMETER><NAME>selection</NAME><VALUE>" & _
  "<UserSelectionTransfer><ProjectName/></UserSelectionTransfer></VALUE></PARAMETER></COMMAND>"
command.selectSingleNode("//ProjectName").text = projectName
Dim quoteText, quote
quoteText = parvex.PullNGORLA(command.xml)
Set quote = WScript.CreateObject("MSXML2.DOMDocument.3.0")
quote.async = False
quote.loadXML quoteText
WScript.Echo "Tags in the quote: " & quote.selectNodes("//TAG").length

' 3. The codec is a class of its own.
Dim encoder
Set encoder = WScript.CreateObject("Parvex.cBinEncoder")
WScript.Echo "Base64 of Man: " & encoder.Encode("Man")

' 4. A command that fails for a known reason is answered with returnError -1.
Set quote = WScript.CreateObject("MSXML2.DOMDocument.3.0")
quote.async = False
quote.loadXML parvex.PullNGORLA("<COMMAND><NAME>noSuchCommand</NAME></COMMAND>")
WScript.Echo "Failed reply: " & quote.selectSingleNode("//returnError").text & " " & _
  quote.selectSingleNode("//errorMessage").text

' 5. Everything else ends the call with an error.
On Error Resume Next
parvex.PullNGORLA "<COMMAND/>"
WScript.Echo "Failed call: " & Hex(Err.Number) & " from " & Err.Source & ": " & Err.Description
