Option Explicit
' A script sends commands by both entries. It prints PASS at its end, and what was wrong before it.

Dim pull, text, document, reply, wrong
wrong = 0

Sub Check(isRight, what)
  If Not isRight Then
    WScript.Echo "wrong: " & what
    wrong = wrong + 1
  End If
End Sub

Set pull = CreateObject("Parvex.LegacyORLAPull")
Check Not CreateObject("Parvex.LegacyORLAPull.1") Is Nothing, "the versioned programmatic id"

text = "<COMMAND><NAME>noSuchCommand</NAME></COMMAND>"
Check InStr(pull.PullNGORLA(text), "Unrecognized or Failed Command") > 0, "a variable"
Check InStr(pull.PullNGORLA((text)), "Unrecognized or Failed Command") > 0, "a value"
Check text = "<COMMAND><NAME>noSuchCommand</NAME></COMMAND>", "the variable stays"

Set document = WScript.CreateObject("Msxml2.DOMDocument.3.0")
document.async = False
document.loadXML "<COMMAND><NAME>getProjectProperties</NAME><PARAMETER><NAME>projectName</NAME>" & _
                 "<VALUE>Riverside Clinic</VALUE></PARAMETER></COMMAND>"
Set reply = pull.Pull(document)
Check reply.selectSingleNode("//NAME").text = "Riverside Clinic", "the reply"
Check document.selectSingleNode("//COMMAND/NAME").text = "getProjectEx", "changed in place"

Dim failed
On Error Resume Next
failed = pull.PullNGORLA("no command at all")
Check Err.Number <> 0, "a command without a name has to fail"
Check 91 = (Err.Number And &HFFFF&), "the number " & Err.Number
Check Err.Source = "Parvex", "the source " & Err.Source
Check InStr(Err.Description, "COMMAND/NAME") > 0, "the description " & Err.Description
Err.Clear
Set reply = pull.Pull(pull)
Check 13 = (Err.Number And &HFFFF&), "another object: " & Err.Number
Err.Clear
Set reply = pull.Pull(Nothing)
Check Err.Number <> 0, "no object"
Err.Clear
failed = pull.PullNGORLA()
Check Err.Number <> 0, "no argument"
On Error Goto 0

If wrong = 0 Then WScript.Echo "PASS"
