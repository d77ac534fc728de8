#include "projects/project_lifecycle.h"

#include <string>
#include <string_view>

#include "legacy_env/install_paths.h"
#include "protocol/command_document.h"
#include "protocol/legacy_requests.h"
#include "protocol/reply_envelope.h"
#include "protocol/required_node.h"

namespace parvex {
namespace {

constexpr std::string_view kEverything = "*";

std::string ProjectPath(const LegacyLink& link, std::string_view projectName) {
  return GetProjectsFolder(link.platform) + "\\" + std::string(projectName);
}

std::string ArchivePath(const LegacyLink& link, std::string_view projectName) {
  return GetArchivesFolder(link.platform) + "\\" + std::string(projectName) + ".E3A";
}

bool HasParameter(const xml::Document& command, std::string_view name) {
  std::string value;
  return GetParamValue(command, name, value);
}

/// The text of a status element in the answer to a question; the answer is read whether or not the router agreed.
bool AskStatus(const LegacyLink& link, const xml::Document& question, std::string_view path) {
  std::string text;
  const bool carriedOut = link.SendRequestMessage(question.Xml(), text);
  const xml::Document answer = ReadAnswer(link, GetCommandName(question), text, carriedOut);
  return StatusMeansTrue(Required(answer.First(path), path, "the legacy application's answer").Text());
}

bool ProjectExists(const LegacyLink& link, std::string_view projectName) {
  return AskStatus(link, MakeCommandDocument("projectExist", {{"projectName", projectName}, {"pdsg", kLegacyPdsg}}),
                   "//STATUS");
}

xml::Document AnswerNameTaken() { return MakeFailedReply("A Project of that name already exists"); }

bool NewNameTaken(const LegacyLink& link, const xml::Document& command) {
  return ProjectExists(link, GetParamFromCmdDoc(command, "newProjectName"));
}

void AddCopyParameters(const LegacyLink& link, const xml::Document& command) {
  AddParameters(command, {{"pdsg", kLegacyPdsg},
                          {"newProjectPath", ProjectPath(link, GetParamFromCmdDoc(command, "newProjectName"))}});
}

bool Succeeded(const xml::Document& reply) {
  const xml::Node returnError = reply.First("//LegacyORLA/returnError");
  return returnError && returnError.Text() == "0";
}

/// The product data set groups in an archive's contents, joined by commas.
std::string ApplicationList(const xml::Document& contents) {
  std::string list;
  for (const xml::Node& application : contents.All("//PROJECT/APPLICATIONLIST/APPLICATION")) {
    list += (list.empty() ? "" : ",") + Required(application.Child("PDSG"), "PDSG", "APPLICATION").Text();
  }
  return list;
}

}  // namespace

xml::Document AddProject(LegacyLink& link, const xml::Document& command) {
  if (!HasParameter(command, "projectPath")) {
    AddParameter(command, "projectPath", ProjectPath(link, GetParamFromCmdDoc(command, "projectName")));
  }
  AddParameters(command, {{"pdsg", kLegacyPdsg}});
  return ForwardAndAcknowledge(link, command);
}

xml::Document DeleteProject(LegacyLink& link, const xml::Document& command) {
  AddParameters(command, {{"pdsg", kLegacyPdsg}});
  return ForwardAndAcknowledge(link, command);
}

xml::Document CopyProject(LegacyLink& link, const xml::Document& command) {
  if (NewNameTaken(link, command)) {
    return AnswerNameTaken();
  }
  AddCopyParameters(link, command);
  return ForwardAndAcknowledge(link, command);
}

xml::Document RenameProject(LegacyLink& link, const xml::Document& command) {
  if (NewNameTaken(link, command)) {
    return AnswerNameTaken();
  }
  // The copy's own handler asks for the name and appends its parameters once more; the legacy application takes the
  // first of each, and has always been sent both.
  SetCommandName(command, "copyProject");
  AddCopyParameters(link, command);
  if (!Succeeded(CopyProject(link, command))) {
    return MakeFailedReply();
  }
  SetCommandName(command, "deleteProject");
  AddParameter(command, "dataList", kEverything);
  return ForwardAndAcknowledge(link, command);
}

xml::Document ArchiveProject(LegacyLink& link, const xml::Document& command) {
  AddParameters(command, {{"pdsg", kLegacyPdsg}});
  if (!HasParameter(command, "dataList")) {
    AddParameter(command, "dataList", kEverything);
  }
  // Asked for is fileSpec, added is archiveFile: deliberate, a front end that names its own file gets none from here.
  if (!HasParameter(command, "fileSpec")) {
    AddParameter(command, "archiveFile", ArchivePath(link, GetParamFromCmdDoc(command, "projectName")));
  }
  return ForwardAndAcknowledge(link, command);
}

xml::Document RetrieveProject(LegacyLink& link, const xml::Document& command) {
  const std::string archiveFile = GetParamFromCmdDoc(command, "fileSpec");
  xml::Document contents;
  if (!Ask(link, MakeCommandDocument("getArchiveContents", {{"pdsg", kLegacyPdsg}, {"archiveFile", archiveFile}}),
           contents)) {
    return MakeFailedReply();
  }
  const std::string applications = ApplicationList(contents);
  const xml::Document question =
      MakeCommandDocument("doesProjectExistInFolder", {{"pdsg", kLegacyPdsg},
                                                       {"projectName", GetParamFromCmdDoc(command, "projectName")},
                                                       {"projectPath", GetParamFromCmdDoc(command, "FOLDER")}});
  if (!AskStatus(link, question, "//STATUS/CODE")) {
    SetCommandName(command, "addProject");
    AddProject(link, command);  // what comes of it shows in the restoring
  }
  SetCommandName(command, "retrieveAndSaveProject");
  AddParameters(command, {{"archiveFile", archiveFile}, {"dataList", applications}, {"pdsg", kLegacyPdsg}});
  return ForwardAndAcknowledge(link, command);
}

}  // namespace parvex
