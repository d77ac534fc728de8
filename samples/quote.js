// Exports the units of a project as a quote document, and shows how failures look.

var projectName = WScript.Arguments.length > 0 ? WScript.Arguments(0) : "Riverside Clinic";
var parvex = new ActiveXObject("Parvex.LegacyORLAPull");

function parse(text) {
  var document = new ActiveXObject("MSXML2.DOMDocument.3.0");
  document.async = false;
  document.loadXML(text);
  return document;
}

// A number as errors are written: a script sees it signed.
function hexadecimal(number) {
  return (number < 0 ? number + 4294967296 : number).toString(16).toUpperCase();
}

// 1. Pull takes a command as a document and answers with a document.
var names = parvex.Pull(parse("<COMMAND><NAME>getProjectList</NAME></COMMAND>")).selectNodes("//PROJECT/NAME");
for (var i = 0; i < names.length; ++i) {
  WScript.Echo("Project: " + names.item(i).text);
}

// 2. PullNGORLA takes and gives text. Texts go into a command through a document, so that they are escaped.
var command = parse("<COMMAND><NAME>getHybrisXMLNoUI</NAME><PARAMETER><NAME>selection</NAME><VALUE>" +
  "<UserSelectionTransfer><ProjectName/></UserSelectionTransfer></VALUE></PARAMETER></COMMAND>");
command.selectSingleNode("//ProjectName").text = projectName;
var quote = parse(parvex.PullNGORLA(command.xml));
WScript.Echo("Tags in the quote: " + quote.selectNodes("//TAG").length);

// 3. The codec is a class of its own.
var encoder = new ActiveXObject("Parvex.cBinEncoder");
WScript.Echo("Base64 of Man: " + encoder.Encode("Man"));

// 4. A command that fails for a known reason is answered with returnError -1.
var failed = parse(parvex.PullNGORLA("<COMMAND><NAME>noSuchCommand</NAME></COMMAND>"));
WScript.Echo("Failed reply: " + failed.selectSingleNode("//returnError").text + " " +
  failed.selectSingleNode("//errorMessage").text);

// 5. Everything else ends the call with an error. JScript tells its number and its text, not who raised it.
try {
  parvex.PullNGORLA("<COMMAND/>");
  WScript.Echo("No failure");
} catch (error) {
  WScript.Echo("Failed call: " + hexadecimal(error.number) + ": " + error.message);
}
