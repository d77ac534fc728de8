Option Explicit
' A script encodes and decodes. It prints PASS at its end, and what was wrong before it.

Dim encoder, files, path, bytes, base64, wrong
wrong = 0

Sub Check(isRight, what)
  If Not isRight Then
    WScript.Echo "wrong: " & what
    wrong = wrong + 1
  End If
End Sub

Set encoder = CreateObject("Parvex.cBinEncoder")
Check encoder.Encode("Man") = "TWFu", "Encode"
Check encoder.Decode("TWFu") = "Man", "Decode"
Check encoder.Encode("") = "" And encoder.Decode("") = "", "empty texts"
base64 = "TWFuTWE="
bytes = encoder.DecodeArr(base64)
Check VarType(bytes) = vbArray + vbByte, "DecodeArr"
Check encoder.EncodeArr(bytes) = base64, "EncodeArr of a variable"
Check encoder.EncodeArr(Array(77, 97, 110)) = "TWFu", "EncodeArr of a script's array"
Check encoder.EncodeArr(encoder.DecodeArr("")) = "", "an empty array"

Set files = CreateObject("Scripting.FileSystemObject")
path = files.BuildPath(files.GetSpecialFolder(2), "parvex-script-test.bin")
If files.FileExists(path) Then files.DeleteFile path
encoder.DecodeToFile base64, path
Check encoder.EncodeFromFile(path) = base64, "EncodeFromFile"

On Error Resume Next
encoder.DecodeToFile base64, path
Check Err.Number = &H800403E8, "the number " & Err.Number
Check Err.Source = "Base64.DecodeToFile", "the source " & Err.Source
Check Err.Description = "File already exists.", "the description " & Err.Description
Err.Clear
base64 = encoder.EncodeFromFile(path & ".none")
Check 53 = (Err.Number And &HFFFF&), "a missing file: " & Err.Number
Err.Clear
On Error Goto 0
files.DeleteFile path

If wrong = 0 Then WScript.Echo "PASS"
