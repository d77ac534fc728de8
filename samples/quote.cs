// Exports the units of a project as a quote document, and shows how failures look. Late bound.
using System;
using System.Xml;

static class LateBoundQuote
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
        dynamic names = parvex.Pull(command).selectNodes("//PROJECT/NAME");
        for (int i = 0; i < names.length; ++i)
        {
            Console.WriteLine("Project: " + names.item(i).text);
        }

        // 2. PullNGORLA takes and gives text. Texts go into a command through a document, so that they are escaped.
        XmlDocument export = Parse(
            "<COMMAND><NAME>getHybrisXMLNoUI</NAME><PARAMETER><NAME>selection</NAME><VALUE>" +
            "<UserSelectionTransfer><ProjectName/></UserSelectionTransfer></VALUE></PARAMETER></COMMAND>");
        export.SelectSingleNode("//ProjectName").InnerText = projectName;
        string quoteText = parvex.PullNGORLA(export.OuterXml);
        Console.WriteLine("Tags in the quote: " + Parse(quoteText).SelectNodes("//TAG").Count);

        // 3. The codec is a class of its own.
        dynamic encoder = Create("Parvex.cBinEncoder");
        Console.WriteLine("Base64 of Man: " + encoder.Encode("Man"));

        // 4. A command that fails for a known reason is answered with returnError -1.
        string failedText = parvex.PullNGORLA("<COMMAND><NAME>noSuchCommand</NAME></COMMAND>");
        XmlDocument failed = Parse(failedText);
        Console.WriteLine("Failed reply: " + failed.SelectSingleNode("//returnError").InnerText + " " +
                          failed.SelectSingleNode("//errorMessage").InnerText);

        // 5. Everything else ends the call with an error. Some numbers become exceptions other than COMException: a
        // folder that is not there is a DirectoryNotFoundException, files that another run uses a SecurityException.
        // What such an exception says in HResult is its own number then, so that its type is what tells them apart.
        foreach (Action call in new Action[]
        {
            () => parvex.PullNGORLA("<COMMAND/>"),
            () => encoder.EncodeFromFile(@"C:\no such folder\no such file"),
        })
        {
            try
            {
                call();
                Console.WriteLine("No failure");
            }
            catch (Exception error)
            {
                Console.WriteLine("Failed call: " + error.HResult.ToString("X8") + " " + error.GetType().Name + " from " +
                                  error.Source + ": " + error.Message);
            }
        }
    }
}
