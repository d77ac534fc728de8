Option Explicit
' A script fills the data classes and reads them. It prints PASS at its end, and what was wrong before it.

Dim tag, unit, accessory, warranty, list(1), read, wrong
wrong = 0

Sub Check(isRight, what)
  If Not isRight Then
    WScript.Echo "wrong: " & what
    wrong = wrong + 1
  End If
End Sub

Set tag = CreateObject("Parvex.TagCls")
tag.PDSG = "RTU47"
tag.TagVersion = 3
Check tag.PDSG = "RTU47" And tag.TagVersion = "3" And tag.MarkFor = "", "texts of a tag"

Set accessory = CreateObject("Parvex.AccessoryCls")
accessory.preorderreq = "Y"
accessory.FileName = "kept.blb"
accessory.LoadAnInstance "part", "desc", "price", "1", "tos", "m1", "m2", "m3", "m4", "supp", _
                         "a1", "a2", "a3", "a4", "a5", "bu1", "bu2"
Check accessory.PartNumber = "part" And accessory.BaseUnit2 = "bu2", "LoadAnInstance"
Check accessory.preorderreq = "1" And accessory.FileName = "kept.blb", "what LoadAnInstance leaves"

Set warranty = CreateObject("Parvex.WarrantyCls")
warranty.preorderreq = "N"
Check warranty.preorderreq = "0", "N of a warranty"

Set unit = CreateObject("Parvex.BaseUnitCls")
unit.preorderreq = "Y"
unit.FileName = "hidden.blb"
Check unit.preorderreq = "Y" And unit.FileName = "", "a base unit's own rules"
read = unit.Accessories
Check UBound(read) < LBound(read), "no accessories at first"

Set list(0) = accessory
Set list(1) = Nothing
unit.Accessories = list
Set list(0) = Nothing
read = unit.Accessories
Check LBound(read) = 0 And UBound(read) = 1, "the bounds"
Check read(0).PartNumber = "part", "an element of the array"
Check read(1) Is Nothing, "an element without an object"
Check unit.Accessories(0).PartNumber = "part", "an element by its index"
read(0).PartNumber = "changed"
Check accessory.PartNumber = "changed", "the object is shared"

On Error Resume Next
Set list(0) = warranty
unit.Accessories = list
Check 13 = (Err.Number And &HFFFF&), "another class: " & Err.Number
Check InStr(Err.Description, "Accessories") > 0, "the description " & Err.Description
Err.Clear
On Error Goto 0
Check unit.Accessories(0).PartNumber = "changed", "the stored array stays"

unit.Warranties = list
Check unit.Warranties(0).preorderreq = "0", "warranties"

If wrong = 0 Then WScript.Echo "PASS"
