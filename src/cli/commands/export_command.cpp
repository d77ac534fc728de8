#include "cli/commands/export_command.h"

#include <optional>
#include <utility>

#include "cli/session/consumer.h"
#include "cli/session/kept_findings.h"
#include "cli/session/replies.h"
#include "cli/terminal/output_file.h"
#include "cli/terminal/standard_streams.h"
#include "interface/legacy_orla_pull.h"
#include "seams/xml.h"

namespace parvex::cli {
namespace {

// A selection of the tags named, of all when none is.
xml::Node MakeSelection(const std::vector<std::string>& tags) {
  const xml::Node selection =
      xml::Document::Parse("<UserSelectionTransfer><ProjectName/></UserSelectionTransfer>").Root();
  if (!tags.empty()) {
    const xml::Node names = xml::AppendElement(selection, "TagNames");
    for (const std::string& tag : tags) {
      xml::AppendElement(names, "TagName", tag);
    }
  }
  return selection;
}

xml::Node ReadSelection(const std::string& file) {
  const xml::Document document = xml::Document::Load(ReadInput(file));
  if (document.IsEmpty()) {
    throw UsageError(file + " is no XML document: " + document.ParseError());
  }
  const xml::Node selection = document.First("//UserSelectionTransfer");
  if (!selection) {
    throw UsageError(file + " holds no UserSelectionTransfer");
  }
  return selection;
}

void SetProject(const xml::Node& selection, const std::string& project, const std::string& file) {
  const xml::Node name = selection.Descendant("ProjectName");
  if (!name) {
    xml::AppendElement(selection, "ProjectName", project);
  } else if (const std::string named = name.Text(); named.empty()) {
    name.SetText(project);
  } else if (named != project) {
    throw UsageError(file + " selects in the project \"" + named + "\", not in \"" + project + "\"");
  }
}

std::string MakeCommand(const ExportOptions& options) {
  const xml::Node selection =
      options.selection.empty() ? MakeSelection(options.tags) : ReadSelection(options.selection);
  SetProject(selection, options.project, options.selection);
  const xml::Document command = xml::Document::Parse(
      "<COMMAND><NAME>getHybrisXMLNoUI</NAME><PARAMETER><NAME>selection</NAME><VALUE/></PARAMETER></COMMAND>");
  command.First("//VALUE").Append(selection);
  return command.Xml();
}

struct Answer {
  std::string reply;
  std::vector<std::string> findings;
};

Answer Send(Session& session, const std::string& command) {
  Platform machine = session.Platform();
  KeptFindings findings(machine.notes);
  machine.notes = &findings;
  LegacyORLAPull pull(machine, session.Recorder());
  pull.SetConsumer(MakeConsumer());
  std::string reply = pull.PullNGORLA(command);
  return {std::move(reply), findings.Texts()};
}

}  // namespace

ExitStatus Export(const SessionOptions& sessionOptions, const ExportOptions& options) {
  const std::string command = MakeCommand(options);
  OutputFile output(options.output);
  Session session(sessionOptions);
  const Answer answer = Send(session, command);
  session.Close();
  if (const std::optional<std::string> failure = FailureIn(answer.reply)) {
    TellError("the export of \"" + options.project + "\" failed: " + *failure);
    return kFailedReply;
  }
  if (!options.lenient && !answer.findings.empty()) {
    for (const std::string& finding : answer.findings) {
      TellError("the export of \"" + options.project + "\" is not what was asked for: " + finding);
    }
    return kFailedCall;
  }
  output.Write(answer.reply);
  return kReply;
}

}  // namespace parvex::cli
