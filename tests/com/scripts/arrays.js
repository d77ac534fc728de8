// A script engine's own arrays, as arguments and as properties.
var wrong = 0;
function Check(good, what) {
  if (!good) {
    wrong += 1;
    WScript.Echo("wrong: " + what);
  }
}

var encoder = WScript.CreateObject("Parvex.cBinEncoder");
Check(encoder.EncodeArr([77, 97, 110]) === "TWFu", "an array of numbers");
Check(encoder.EncodeArr([]) === "", "an empty array");

var unit = WScript.CreateObject("Parvex.BaseUnitCls");
var accessory = WScript.CreateObject("Parvex.AccessoryCls");
accessory.PartNumber = "P-1";
unit.Accessories = [accessory, null];
Check(unit.Accessories(0).PartNumber === "P-1", "an array of objects");
Check(unit.Accessories(1) === null, "null is no object");

function Refusal(act) {
  try {
    act();
  } catch (error) {
    return error.description || error.message;
  }
  return "nothing";
}
Check(Refusal(function () { encoder.EncodeArr([77, 256]); }).indexOf("element 1") >= 0, "the element is named");
Check(Refusal(function () { unit.Accessories = [encoder]; }).indexOf("Accessories") >= 0, "the property is named");

if (wrong === 0) {
  WScript.Echo("PASS");
}
