#include "reports/report_commands.h"

#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include "formats/text/text.h"
#include "legacy_env/file_routines.h"
#include "legacy_env/install_paths.h"
#include "legacy_env/program_folder_document.h"
#include "protocol/command_document.h"
#include "protocol/legacy_names.h"
#include "protocol/reply_envelope.h"
#include "protocol/required_node.h"
#include "reports/drawing_files.h"
#include "reports/report_catalogue.h"
#include "seams/automation_error.h"
#include "tags/tag_listing.h"

namespace parvex {
namespace {

using automation::Argument;
using automation::ObjectRef;
using automation::Value;

/// The tags that a command names, with what the report server is told of their project.
struct ReportedTags {
  xml::Document data;
  std::string projectId;
  std::string projectName;
  std::string unitsOfMeasure;  // empty: the server's own
};

/// One of them.
struct ReportedTag {
  std::string pdsg;
  std::string name;
  std::string xml;
};

ReportedTags FetchTags(LegacyLink& link, const xml::Document& command) {
  const xml::Document request = xml::Document::Parse(command.Xml());
  SetCommandName(request, "getTags");
  constexpr std::string_view kNamePath = "//Property[@name='proj_name']/Value";
  ReportedTags tags;
  tags.data = GetTags(link, request);
  tags.projectId =
      Required(tags.data.First("//Project"), "//Project", "the tag data").Attribute("ProjectID").value_or("");
  tags.projectName = Required(tags.data.First(kNamePath), kNamePath, "the tag data").Text();
  tags.unitsOfMeasure = GetParamFromCmdDoc(command, "UnitsOfMeasure");
  return tags;
}

std::string PdsgOf(const xml::Node& tag) {
  return Required(tag.Descendant("Application"), ".//Application", "TAG").Attribute("PDSG").value_or("");
}

ReportedTag ReadTag(const xml::Node& tag, const std::string& pdsg) {
  return {pdsg, Required(tag.Descendant("TagName"), ".//TagName", "TAG").Text(), tag.Xml()};
}

/// The server that the instance holds, made when it holds none. A command keeps it for itself, since the server may run
/// the host's own messages while it works. `held` tells whether it was there.
ObjectRef HoldReportServer(LegacyLink& link, bool& held) {
  held = link.reportServer != nullptr;
  if (!held) {
    link.reportServer = link.platform.automation->Create(legacy::kReportServerClass);
  }
  return link.reportServer;
}

void PrepareReport(const ObjectRef& server, std::string_view clientId, const ReportedTags& tags) {
  server->Put("action", std::string("Preview"));
  server->Put("ClientID", std::string(clientId));
  server->Put("command", std::string("runReport"));
  server->Put("OutputType", std::string("RTF"));
  server->Put("Project", tags.projectName);
  server->Put("ProjectID", tags.projectId);
  if (!tags.unitsOfMeasure.empty()) {
    server->Put("OutputUnits", tags.unitsOfMeasure);
  }
}

/// The server of getReport and getReports: held or new, told what is to be made.
ObjectRef PrepareReportServer(LegacyLink& link, const ReportedTags& tags) {
  bool held = false;
  const ObjectRef server = HoldReportServer(link, held);
  if (held) {
    server->Call("Reset", {});
  }
  PrepareReport(server, "NGORLA", tags);
  return server;
}

void CallWithTexts(const ObjectRef& server, std::string_view member, std::initializer_list<std::string> texts) {
  std::vector<Argument> arguments;
  for (const std::string& text : texts) {
    arguments.push_back({text, true});
  }
  server->Call(member, arguments);
}

void AddTag(const Platform& platform, const ObjectRef& server, const ReportedTag& tag) {
  CallWithTexts(server, "AddTag", {TemplatesFolder(platform, tag.pdsg), tag.xml, tag.pdsg, tag.pdsg, tag.name});
}

void AddReport(const ObjectRef& server, const std::string& templatePath, std::string_view reportName,
               const ReportedTag& tag) {
  CallWithTexts(server, "AddReport",
                {templatePath, ReportCategory(reportName), std::string(reportName), tag.pdsg, tag.name});
}

bool IsTrue(const Value& result) {
  if (const auto* flag = std::get_if<bool>(&result)) {
    return *flag;
  }
  const auto* number = std::get_if<std::int32_t>(&result);
  return number != nullptr && *number != 0;
}

bool MakeReport(const ObjectRef& server) {
  Argument unused{std::string(), true};
  return IsTrue(server->Call("MakeReport", {&unused, 1}));
}

/// Makes what was added; nothing added is shown to the user and counts as not made.
bool MakeReportOf(const Platform& platform, const ObjectRef& server, std::size_t added, std::string_view emptyText) {
  if (added > 0) {
    return MakeReport(server);
  }
  platform.messageBoxes->Show(emptyText, kDefaultCaption, MessageBoxes::Icon::None);
  return false;
}

bool IsTemporaryReport(std::string_view fileName) {
  const std::string upper = ToUpper(fileName);
  return fileName.starts_with("rpt") && (upper.ends_with("RTF") || upper.ends_with("TE"));
}

void DeleteTemporaryReports(const Platform& platform) {
  const std::string folder = ReportsTempFolder(platform) + "\\";
  for (const std::string& fileName : platform.files->ListFiles(folder + "*.*")) {
    if (IsTemporaryReport(fileName)) {
      platform.files->Remove(folder + fileName);
    }
  }
}

xml::Document AnswerInReturnError(std::string_view text) {
  const xml::Document reply = MakeReplyEnvelope();
  reply.First("//returnError").SetText(text);
  return reply;
}

xml::Document AnswerMade(bool made) { return AnswerInReturnError(made ? "No Error" : "No Report was generated"); }

xml::Document MakeOneReport(LegacyLink& link, const xml::Document& command, const std::string& reportName) {
  const Platform& platform = link.platform;
  const ReportedTags tags = FetchTags(link, command);
  const ObjectRef server = PrepareReportServer(link, tags);
  std::size_t added = 0;
  for (const xml::Node& element : tags.data.All("//TAG")) {
    const std::string pdsg = PdsgOf(element);
    const std::string templatePath = TemplateOfReport(platform, pdsg, reportName);
    if (FileExists(platform, templatePath)) {
      const ReportedTag tag = ReadTag(element, pdsg);
      AddTag(platform, server, tag);
      AddReport(server, templatePath, reportName, tag);
      ++added;
    }
  }
  const bool made = MakeReportOf(platform, server, added, "The Report could not be generated. ");
  DeleteTemporaryReports(platform);
  return AnswerMade(made);
}

/// The equipment schedule is no report of the server: a request object of the legacy application shows it.
xml::Document ShowEquipmentSchedule(LegacyLink& link, const xml::Document& command) {
  // Name and units are part of the command and have to be readable; the request itself is told neither.
  Required(command.First("//command/Report/Name"), "//command/Report/Name", "the command document");
  const ReportedTags tags = FetchTags(link, command);
  std::string tagsXml;
  for (const xml::Node& tag : tags.data.All("//TAG")) {
    tagsXml += tag.Xml();
  }
  auto named = std::make_shared<automation::KeyedItems>();
  named->emplace_back("pdsg", Argument{std::string("QRT52")});  // the schedule function's own group, not the usual one
  named->emplace_back("projectName", Argument{tags.projectName});
  named->emplace_back("projectID", Argument{tags.projectId});
  named->emplace_back("tags", Argument{tagsXml});
  const ObjectRef request = link.platform.automation->Create(legacy::kScheduleRequestClass);
  Argument arguments[] = {{std::string("SHOWSCHEDULE")}, {automation::CollectionRef(named)}};
  return AnswerMade(IsTrue(request->Call("SendRequest", arguments)));
}

std::vector<std::string> ReportNames(const xml::Document& command) {
  std::vector<std::string> names;
  if (const xml::Node name = command.First("//COMMAND/PARAMETER/NAME[text()='reportName']")) {
    for (const xml::Node& value : name.Parent().All(".//VALUE")) {
      names.push_back(value.Text());
    }
  }
  return names;
}

xml::Document MakeSeveralReports(LegacyLink& link, const xml::Document& command,
                                 const std::vector<std::string>& reportNames) {
  const Platform& platform = link.platform;
  const ReportedTags tags = FetchTags(link, command);
  const ObjectRef server = PrepareReportServer(link, tags);
  std::size_t added = 0;
  for (const xml::Node& element : tags.data.All("//TAG")) {
    const ReportedTag tag = ReadTag(element, PdsgOf(element));
    AddTag(platform, server, tag);
    for (const std::string& reportName : reportNames) {
      const std::string templatePath = TemplateOfReport(platform, tag.pdsg, reportName);
      if (FileExists(platform, templatePath)) {
        AddReport(server, templatePath, reportName, tag);
        ++added;
      }
    }
  }
  const bool made = MakeReportOf(platform, server, added, "The Reports could not be generated. ");
  DeleteTemporaryReports(platform);
  return AnswerMade(made);
}

/// The root element of the report that the server has just written, with its drawings.
xml::Node LoadSubmittal(const Platform& platform, std::string_view pdsg) {
  const std::string path = ReportsTempFolder(platform) + "\\NGreport.xml";
  const xml::Document report = LoadDocument(platform, path);
  if (report.IsEmpty()) {
    throw MakeRuntimeError(RuntimeError::ObjectNotSet, path + " is no XML document: " + report.ParseError());
  }
  EmbedDrawingFiles(platform, report, pdsg);
  return Required(report.First("//root"), "//root", path);
}

}  // namespace

xml::Document GetReport(LegacyLink& link, const xml::Document& command) {
  try {
    const std::string reportName = GetParamFromCmdDoc(command, "reportName");
    return reportName == "EquipmentSchedule" ? ShowEquipmentSchedule(link, command)
                                             : MakeOneReport(link, command, reportName);
  } catch (const AutomationError& error) {
    return MakeFailedReply("Error in getReport. " + error.Description());
  }
}

xml::Document GetReports(LegacyLink& link, const xml::Document& command) {
  try {
    const std::vector<std::string> names = ReportNames(command);
    return names.empty() ? AnswerInReturnError("No Report names were specified")
                         : MakeSeveralReports(link, command, names);
  } catch (const AutomationError& error) {
    return MakeFailedReply("Error in getReports(). " + error.Description());
  }
}

xml::Document GetSubmittal(LegacyLink& link, const xml::Document& command) {
  const Platform& platform = link.platform;
  const xml::Document reply = xml::Document::Parse("<TAGS/>");
  const ReportedTags tags = FetchTags(link, command);
  const std::string reportName = GetParamFromCmdDoc(command, "reportName");
  bool held = false;
  const ObjectRef server = HoldReportServer(link, held);
  for (const xml::Node& element : tags.data.All("//TAG")) {
    const std::string pdsg = PdsgOf(element);
    const std::string templatePath = TemplatesFolder(platform, pdsg) + "\\NGSubmittal_qdf.xml";
    if (!FileExists(platform, templatePath)) {
      continue;
    }
    const ReportedTag tag = ReadTag(element, pdsg);
    server->Call("Reset", {});
    // A client name of its own, deliberately: it makes the server write a document that can be read back.
    PrepareReport(server, "NGSubmittal", tags);
    AddTag(platform, server, tag);
    AddReport(server, templatePath, reportName, tag);
    MakeReport(server);
    xml::AppendElement(reply.Root(), "TAG").Append(LoadSubmittal(platform, pdsg).Clone());
  }
  DeleteTemporaryReports(platform);
  return reply;
}

}  // namespace parvex
