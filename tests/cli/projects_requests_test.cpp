// What the project commands send, exactly, as the journal has it: with and without each parameter that may be missing.

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <nlohmann/json.hpp>

#include "tests/cli/program.h"

namespace parvex::test {
namespace {

using SortedJson = nlohmann::json;
using Parameters = std::vector<std::pair<std::string, std::string>>;

struct Request {
  std::string name;
  Parameters parameters;
};

struct RequestsOfACommand {
  const char* reason;
  Request command;
  std::vector<std::string> answers;  ///< of the legacy application, one a request
  std::vector<Request> requests;     ///< in the order in which they are sent
};

const std::string kRoot = "C:\\Korvane\\TQ5-VX\\";
const std::pair<std::string, std::string> kPdsg{"pdsg", "KDQ47"};
const std::pair<std::string, std::string> kProject{"projectName", "Clinic"};
const std::pair<std::string, std::string> kPath{"projectPath", kRoot + "Projects\\Clinic"};
const std::pair<std::string, std::string> kNewName{"newProjectName", "Copy"};
const std::pair<std::string, std::string> kNewPath{"newProjectPath", kRoot + "Projects\\Copy"};
const std::pair<std::string, std::string> kArchive{"archiveFile", kRoot + "Archives\\Clinic.E3A"};
const std::pair<std::string, std::string> kSpec{"fileSpec", "D:\\a.E3A"};
const std::pair<std::string, std::string> kFolder{"FOLDER", "C:\\P"};
const std::pair<std::string, std::string> kEverything{"dataList", "*"};

const char* const kNo = "<ANSWER><STATUS>False</STATUS></ANSWER>";
const char* const kContents =
    "<A><PROJECT><APPLICATIONLIST><APPLICATION><PDSG>KDQ47</PDSG></APPLICATION><APPLICATION><PDSG>RTU47</PDSG>"
    "</APPLICATION></APPLICATIONLIST></PROJECT></A>";
const Request kAskForCopy{"projectExist", {{"projectName", "Copy"}, kPdsg}};
const Request kAskForContents{"getArchiveContents", {kPdsg, {"archiveFile", "D:\\a.E3A"}}};
const Request kAskForFolder{"doesProjectExistInFolder", {kPdsg, kProject, {"projectPath", "C:\\P"}}};

const RequestsOfACommand kCases[] = {
    {"getProjectList with parameters of its own",
     {"getProjectList", {kProject, {"pdsg", "other"}}},
     {"<LIST/>"},
     {{"getProjectList", {kPdsg}}}},
    {"addProject", {"addProject", {kProject}}, {""}, {{"addProject", {kProject, kPath, kPdsg}}}},
    {"addProject with a path",
     {"addProject", {{"projectPath", "D:\\P"}, kProject}},
     {""},
     {{"addProject", {{"projectPath", "D:\\P"}, kProject, kPdsg}}}},
    {"deleteProject", {"deleteProject", {kProject}}, {""}, {{"deleteProject", {kProject, kPdsg}}}},
    {"copyProject",
     {"copyProject", {kProject, kNewName}},
     {kNo, ""},
     {kAskForCopy, {"copyProject", {kProject, kNewName, kPdsg, kNewPath}}}},
    {"renameProject",
     {"renameProject", {kProject, kNewName}},
     {kNo, kNo, "", ""},
     {kAskForCopy,
      kAskForCopy,
      {"copyProject", {kProject, kNewName, kPdsg, kNewPath, kPdsg, kNewPath}},
      {"deleteProject", {kProject, kNewName, kPdsg, kNewPath, kPdsg, kNewPath, kEverything}}}},
    {"archiveProject",
     {"archiveProject", {kProject}},
     {""},
     {{"archiveProject", {kProject, kPdsg, kEverything, kArchive}}}},
    {"archiveProject with a list",
     {"archiveProject", {kProject, {"dataList", "RTU47"}}},
     {""},
     {{"archiveProject", {kProject, {"dataList", "RTU47"}, kPdsg, kArchive}}}},
    {"archiveProject with a file",
     {"archiveProject", {kProject, kSpec}},
     {""},
     {{"archiveProject", {kProject, kSpec, kPdsg, kEverything}}}},
    {"archiveProject with both",
     {"archiveProject", {kSpec, kEverything, kProject}},
     {""},
     {{"archiveProject", {kSpec, kEverything, kProject, kPdsg}}}},
    {"retrieveProject of one that is there",
     {"retrieveProject", {kProject, kSpec, kFolder}},
     {kContents, "<STATUS><CODE>1</CODE></STATUS>", ""},
     {kAskForContents,
      kAskForFolder,
      {"retrieveAndSaveProject",
       {kProject, kSpec, kFolder, {"archiveFile", "D:\\a.E3A"}, {"dataList", "KDQ47,RTU47"}, kPdsg}}}},
    {"retrieveProject of one that is not",
     {"retrieveProject", {kProject, kSpec, kFolder}},
     {kContents, "<STATUS><CODE>0</CODE></STATUS>", "", ""},
     {kAskForContents,
      kAskForFolder,
      {"addProject", {kProject, kSpec, kFolder, kPath, kPdsg}},
      {"retrieveAndSaveProject",
       {kProject, kSpec, kFolder, kPath, kPdsg, {"archiveFile", "D:\\a.E3A"}, {"dataList", "KDQ47,RTU47"}, kPdsg}}}},
};

class ProjectRequests : public testing::TestWithParam<RequestsOfACommand> {};

TEST_P(ProjectRequests, AreSentWithTheirExactText) {
  const CliMachine machine;
  std::string replay;
  for (const std::string& answer : GetParam().answers) {
    replay += SortedJson({{"kind", "router"}, {"answer", answer}, {"success", true}}).dump() + "\n";
  }
  const Request& command = GetParam().command;
  const Outcome outcome =
      machine.Run({"--journal", machine.Path("journal"), "--replay", machine.Write("replay", replay), "pull",
                   machine.Write("c.xml", CommandText(command.name, command.parameters))});
  EXPECT_EQ(outcome.status, 0) << outcome.out << outcome.err;
  std::vector<std::string> sent;
  for (const std::string& line : machine.Lines("journal")) {
    sent.push_back(SortedJson::parse(line).at("request"));
  }
  std::vector<std::string> expected;
  for (const Request& request : GetParam().requests) {
    // A document's text ends with a line break; the request for the list is a text and no document.
    expected.push_back(CommandText(request.name, request.parameters) +
                       (request.name == "getProjectList" ? "" : "\r\n"));
  }
  EXPECT_EQ(sent, expected);
}

INSTANTIATE_TEST_SUITE_P(Commands, ProjectRequests, testing::ValuesIn(kCases), [](const auto& info) {
  std::string name = info.param.reason;
  std::replace(name.begin(), name.end(), ' ', '_');
  return name;
});

}  // namespace
}  // namespace parvex::test
