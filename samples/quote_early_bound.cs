// Exports the units of a project as a quote document, and shows how failures look. Early bound, through ParvexInterop.cs.
using System;
using System.Xml;
using Parvex;

static class EarlyBoundQuote
{
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
        var parvex = (ILegacyORLAPull)new LegacyORLAPull();

        // 1. Pull takes a command as a document and answers with a document. The document goes in as an object of MSXML,
        // and is asked for its own interface there.
        dynamic document = Activator.CreateInstance(Type.GetTypeFromProgID("MSXML2.DOMDocument.3.0", throwOnError: true));
        document.async = false;
        document.loadXML("<COMMAND><NAME>getProjectList</NAME></COMMAND>");
        object command = document;
        dynamic reply = parvex.Pull(ref command);
        dynamic names = reply.selectNodes("//PROJECT/NAME");
        for (int i = 0; i < names.length; ++i)
        {
            Console.WriteLine("Project: " + names.item(i).text);
        }

        // 2. PullNGORLA takes and gives text. Texts go into a command through a document, so that they are escaped.
        XmlDocument export = Parse(
            "<COMMAND><NAME>getHybrisXMLNoUI</NAME><PARAMETER><NAME>selection</NAME><VALUE>" +
            "<UserSelectionTransfer><ProjectName/></UserSelectionTransfer></VALUE></PARAMETER></COMMAND>");
        export.SelectSingleNode("//ProjectName").InnerText = projectName;
        string text = export.OuterXml;
        Console.WriteLine("Tags in the quote: " + Parse(parvex.PullNGORLA(ref text)).SelectNodes("//TAG").Count);

        // 3. The codec is a class of its own.
        var encoder = (IcBinEncoder)new cBinEncoder();
        Console.WriteLine("Base64 of Man: " + encoder.Encode("Man"));

        // 4. A command that fails for a known reason is answered with returnError -1.
        text = "<COMMAND><NAME>noSuchCommand</NAME></COMMAND>";
        XmlDocument failed = Parse(parvex.PullNGORLA(ref text));
        Console.WriteLine("Failed reply: " + failed.SelectSingleNode("//returnError").InnerText + " " +
                          failed.SelectSingleNode("//errorMessage").InnerText);

        // 5. Everything else ends the call with an error. Some numbers become exceptions other than COMException; HResult
        // has the number of all of them.
        foreach (Action call in new Action[]
        {
            () => { string nothing = "<COMMAND/>"; parvex.PullNGORLA(ref nothing); },
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
