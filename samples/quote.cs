// Exports the units of a project as a quote document, and shows how failures look.
using System;
using System.Runtime.InteropServices;
using System.Xml;

static class Program
{
    static dynamic Create(string programmaticId)
    {
        return Activator.CreateInstance(Type.GetTypeFromProgID(programmaticId, throwOnError: true));
    }

    static XmlDocument Parse(string text)
    {
        var document = new XmlDocument();
        document.LoadXml(text);
        return document;
    }

    [STAThread]
    static void Main(string[] arguments)
    {
        string projectName = arguments.Length > 0 ? arguments[0] : "Riverside Clinic";
        dynamic parvex = Create("Parvex.LegacyORLAPull");

        // 1. Pull takes a command as a document and answers with a document.
        dynamic command = Create("MSXML2.DOMDocument.3.0");
        command.async = false;
        command.loadXML("<COMMAND><NAME>getProjectList</NAME></COMMAND>");
        dynamic reply = parvex.Pull(command);
        foreach (dynamic node in reply.selectNodes("//PROJECT/NAME"))
        {
            Console.WriteLine("Project: " + node.text);
        }

        // 2. PullNGORLA takes and gives text. Texts go into a command through a document, so that they are escaped.
        XmlDocument export = Parse(
            "<COMMAND><NAME>getHybrisXMLNoUI</NAME><PARAMETER><NAME>selection</NAME><VALUE>" +
            "<UserSelectionTransfer><ProjectName/></UserSelectionTransfer></VALUE></PARAMETER></COMMAND>");
        export.SelectSingleNode("//ProjectName").InnerText = projectName;
        XmlDocument quote = Parse(parvex.PullNGORLA(export.OuterXml));
        Console.WriteLine("Tags in the quote: " + quote.SelectNodes("//TAG").Count);

        // 3. The codec is a class of its own.
        dynamic encoder = Create("Parvex.cBinEncoder");
        Console.WriteLine("Base64 of Man: " + encoder.Encode("Man"));

        // 4. A command that fails for a known reason is answered with returnError -1.
        XmlDocument failed = Parse(parvex.PullNGORLA("<COMMAND><NAME>noSuchCommand</NAME></COMMAND>"));
        Console.WriteLine("Failed reply: " + failed.SelectSingleNode("//returnError").InnerText + " " +
                          failed.SelectSingleNode("//errorMessage").InnerText);

        // 5. Everything else ends the call with an error.
        try
        {
            parvex.PullNGORLA("<COMMAND/>");
        }
        catch (COMException error)
        {
            Console.WriteLine("Failed call: " + error.ErrorCode.ToString("X") + " from " + error.Source);
        }
    }
}
