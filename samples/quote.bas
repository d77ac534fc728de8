Attribute VB_Name = "Quote"
' Exports the units of a project as a quote document, and shows how failures look. Early bound: the project refers to the
' libraries "Parvex 1.0" and "Microsoft XML, v3.0". For late binding declare all as Object, and set each to what
' CreateObject gives for its programmatic id; the rest stays.
Option Explicit

Public Sub ShowQuote(Optional ByVal projectName As String = "Riverside Clinic")
  ' One instance serves many calls. It belongs to the thread that made it.
  Dim pull As New Parvex.LegacyORLAPull

  ' 1. Pull takes a command as a document and answers with a document. Both parameters are by reference: the command is
  ' given as a variable of the type that the library declares.
  Dim command As New MSXML2.DOMDocument
  Dim reply As MSXML2.DOMDocument
  Dim node As MSXML2.IXMLDOMNode
  command.async = False
  command.loadXML "<COMMAND><NAME>getProjectList</NAME></COMMAND>"
  Set reply = pull.Pull(command)
  For Each node In reply.selectNodes("//PROJECT/NAME")
    Debug.Print "Project: " & node.Text
  Next

  ' 2. PullNGORLA takes and gives text. Texts go into a command through a document, so that they are escaped.
  Dim text As String
  command.loadXML "<COMMAND><NAME>getHybrisXMLNoUI</NAME><PARAMETER><NAME>selection</NAME><VALUE>" & _
    "<UserSelectionTransfer><ProjectName/></UserSelectionTransfer></VALUE></PARAMETER></COMMAND>"
  command.selectSingleNode("//ProjectName").Text = projectName
  text = command.xml
  Debug.Print "Tags in the quote: " & Parsed(pull.PullNGORLA(text)).selectNodes("//TAG").length

  ' 3. The codec is a class of its own.
  Dim encoder As New Parvex.cBinEncoder
  Debug.Print "Base64 of Man: " & encoder.Encode("Man")

  ' 4. A command that fails for a known reason is answered with returnError -1.
  Dim failed As MSXML2.DOMDocument
  text = "<COMMAND><NAME>noSuchCommand</NAME></COMMAND>"
  Set failed = Parsed(pull.PullNGORLA(text))
  Debug.Print "Failed reply: " & failed.selectSingleNode("//returnError").Text & " " & _
    failed.selectSingleNode("//errorMessage").Text

  ' 5. Everything else ends the call with an error. Numbers of the runtime are its own here: 91, not &H800A005B.
  On Error Resume Next
  text = "<COMMAND/>"
  text = pull.PullNGORLA(text)
  Debug.Print "Failed call: " & Err.Number & " from " & Err.Source & ": " & Err.Description
End Sub

Private Function Parsed(ByVal text As String) As MSXML2.DOMDocument
  Set Parsed = New MSXML2.DOMDocument
  Parsed.async = False
  Parsed.loadXML text
End Function
