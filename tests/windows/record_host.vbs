' A script host that sends commands through Parvex.dll, one instance for all:
'
'   cscript record_host.vbs ENTRY FILE [ENTRY FILE]...
'
' ENTRY is Pull or PullNGORLA; the command is the text of FILE, which is UTF-16. Writes a line a command: "reply",
' "nothing", or "error" with its number.
Option Explicit
Dim pull, n
Set pull = CreateObject("Parvex.LegacyORLAPull")
For n = 0 To WScript.Arguments.Count - 2 Step 2
  Send WScript.Arguments(n), TextOf(WScript.Arguments(n + 1))
Next

Function TextOf(file)
  TextOf = CreateObject("Scripting.FileSystemObject").OpenTextFile(file, 1, False, -1).ReadAll
End Function

Sub Send(entry, text)
  Dim document, reply, told
  told = "nothing"
  If entry = "Pull" Then
    Set document = WScript.CreateObject("Msxml2.DOMDocument.3.0")
    document.async = False
    document.loadXML text
    On Error Resume Next
    Set reply = pull.Pull(document)
    If Err.Number = 0 Then told = "reply"
  Else
    On Error Resume Next
    reply = pull.PullNGORLA(text)
    If Err.Number = 0 And Len(reply) > 0 Then told = "reply"
  End If
  If Err.Number <> 0 Then told = "error " & (Err.Number And &HFFFF&)
  WScript.Echo told
End Sub
