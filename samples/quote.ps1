# Exports the units of a project as a quote document, and shows how failures look.
param([string]$ProjectName = "Riverside Clinic")

$parvex = New-Object -ComObject Parvex.LegacyORLAPull

# 1. Pull takes a command as a document and answers with a document.
$command = New-Object -ComObject MSXML2.DOMDocument.3.0
$command.async = $false
[void]$command.loadXML("<COMMAND><NAME>getProjectList</NAME></COMMAND>")
$reply = $parvex.Pull($command)
foreach ($node in $reply.selectNodes("//PROJECT/NAME")) { "Project: " + $node.text }

# 2. PullNGORLA takes and gives text. Texts go into a command through a document, so that they are escaped.
[xml]$export = "<COMMAND><NAME>getHybrisXMLNoUI</NAME><PARAMETER><NAME>selection</NAME><VALUE>" +
  "<UserSelectionTransfer><ProjectName/></UserSelectionTransfer></VALUE></PARAMETER></COMMAND>"
$export.SelectSingleNode("//ProjectName").InnerText = $ProjectName
[xml]$quote = $parvex.PullNGORLA($export.OuterXml)
"Tags in the quote: " + $quote.SelectNodes("//TAG").Count

# 3. The codec is a class of its own.
$encoder = New-Object -ComObject Parvex.cBinEncoder
"Base64 of Man: " + $encoder.Encode("Man")

# 4. A command that fails for a known reason is answered with returnError -1.
[xml]$failed = $parvex.PullNGORLA("<COMMAND><NAME>noSuchCommand</NAME></COMMAND>")
"Failed reply: " + $failed.LegacyORLA.returnError + " " + $failed.LegacyORLA.errorMessage

# 5. Everything else ends the call with an error. Some numbers become exceptions other than COMException
# (DirectoryNotFoundException, SecurityException, ...), so all are caught. What was raised is the innermost one.
try {
  [void]$parvex.PullNGORLA("<COMMAND/>")
  "No failure"
} catch {
  $raised = $_.Exception.GetBaseException()
  "Failed call: {0:X8} {1} from {2}: {3}" -f $raised.HResult, $raised.GetType().Name, $raised.Source, $raised.Message
}
