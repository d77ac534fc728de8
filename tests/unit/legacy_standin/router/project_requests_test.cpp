#include "legacy_standin/router/project_requests.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "formats/zip/zip_writer.h"
#include "legacy_standin/projects/project_store.h"
#include "legacy_standin/router/project_archive.h"
#include "protocol/command_document.h"
#include "tests/unit/legacy_standin/standin_machine.h"

namespace parvex::standin {
namespace {

using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;

using Given = std::vector<std::pair<std::string, std::string>>;

constexpr const char* kProjects = "C:\\Korvane\\TQ5-VX\\Projects\\";
constexpr const char* kArchive = "C:\\Korvane\\TQ5-VX\\Archives\\Clinic.E3A";

class ProjectRequestsTest : public testing::Test, protected StandinMachine {
 protected:
  /// Sends a request of the application's own group.
  bool Send(const std::string& name, const Given& parameters = {}) {
    const xml::Document request = MakeCommandDocument(name);
    for (const auto& [parameterName, value] : parameters) {
      AddParameter(request, parameterName, value);
    }
    AddParameter(request, "pdsg", "KDQ47");
    return Router(application, requests).SendRequestMessage(request.Xml(), answer);
  }

  bool Add(const std::string& name) {
    return Send("addProject", {{"projectName", name}, {"projectPath", kProjects + name}});
  }

  std::string Text(const std::string& path) {
    const xml::Node node = xml::Document::Parse(answer).First(path);
    return node ? node.Text() : "<none>";
  }
  std::vector<std::string> Texts(const std::string& path) {
    std::vector<std::string> texts;
    for (const xml::Node& node : xml::Document::Parse(answer).All(path)) {
      texts.push_back(node.Text());
    }
    return texts;
  }

  void StoreUnits() {
    Unit chiller;
    chiller.tagId = 2;
    chiller.keys = {{"PDSG", "XRC47"}, {"MarkFor", "CH-1"}};
    chiller.stored = {"tag2.blb", StoredData::Place::Project, {}};
    Unit rooftop;
    rooftop.tagId = 1;
    rooftop.keys = {{"PDSG", "RTU47"}, {"MarkFor", "RTU-1"}};
    rooftop.accessories = {{{}, {"acc1.blb", StoredData::Place::Project, {}}}};
    store.WriteUnits("Clinic", {rooftop, chiller});
    machine.Write(std::string(kProjects) + "Clinic\\tag2.blb", "blob 2");
    machine.Write(std::string(kProjects) + "Clinic\\acc1.blb", "blob 1");
  }

  std::vector<std::string> UnitNames(const std::string& project) {
    std::vector<std::string> names;
    for (const Unit& unit : store.ReadUnits(project)) {
      names.push_back(FieldOf(unit.keys, "MarkFor"));
    }
    return names;
  }

  ProjectStore store{application};
  RequestTable requests = ProjectRequests();
  std::string answer;
};

TEST_F(ProjectRequestsTest, TheListNamesEveryProjectAndItsFolder) {
  Add("b & c");
  Add("A");
  ASSERT_TRUE(Send("getProjectList"));
  EXPECT_THAT(Texts("/PROJECTLIST/PROJECT/NAME"), ElementsAre("A", "b & c"));
  EXPECT_THAT(Texts("/PROJECTLIST/PROJECT/FOLDER"),
              ElementsAre(std::string(kProjects) + "A", std::string(kProjects) + "b & c"));
}

TEST_F(ProjectRequestsTest, WithoutProjectsTheListIsEmpty) {
  ASSERT_TRUE(Send("getProjectList"));
  EXPECT_THAT(Texts("/PROJECTLIST/*"), IsEmpty());
}

TEST_F(ProjectRequestsTest, AProjectsRecordSpellsItsNameAsItsFolder) {
  Add("Clinic");
  ASSERT_TRUE(Send("getProjectEx", {{"projectName", "CLINIC"}})) << answer;
  EXPECT_EQ(Text("/PROJECT/NAME"), "Clinic");
  EXPECT_EQ(Text("/PROJECT/FOLDER"), std::string(kProjects) + "Clinic");
  EXPECT_EQ(Text("/PROJECT/PROPERTIES/DESCRIPTION"), "");
}

TEST_F(ProjectRequestsTest, PropertiesThatAreNotGivenKeepTheirValues) {
  Add("Clinic");
  ASSERT_TRUE(Send("setProject", {{"projectName", "Clinic"}, {"Location", "Ärztehaus <1>"}, {"Notes", "n"}}));
  EXPECT_EQ(Text("/PROJECT/PROPERTIES/LOCATION"), "Ärztehaus <1>");
  ASSERT_TRUE(Send("setProject", {{"projectName", "Clinic"}, {"Notes", ""}, {"CompanyName", "not kept here"}}));
  ASSERT_TRUE(Send("getProjectEx", {{"projectName", "Clinic"}}));
  EXPECT_THAT(Texts("/PROJECT/PROPERTIES/*"), ElementsAre("", "", "Ärztehaus <1>", "", ""));
}

TEST_F(ProjectRequestsTest, AnUnknownProjectIsRefusedByEveryRequestThatNeedsOne) {
  for (const char* name : {"getProjectEx", "setProject", "deleteProject"}) {
    EXPECT_FALSE(Send(name, {{"projectName", "x"}})) << name;
    EXPECT_EQ(answer, "there is no project \"x\"") << name;
  }
  EXPECT_FALSE(Send("copyProject",
                    {{"projectName", "x"}, {"newProjectName", "y"}, {"newProjectPath", std::string(kProjects) + "y"}}));
  EXPECT_EQ(answer, "there is no project \"x\"");
  EXPECT_FALSE(Send("archiveProject", {{"projectName", "x"}, {"dataList", "*"}, {"archiveFile", kArchive}}));
  EXPECT_FALSE(machine.Exists(kArchive));
}

TEST_F(ProjectRequestsTest, ANameThatIsTakenIsRefused) {
  Add("Clinic");
  EXPECT_FALSE(Add("CLINIC"));
  EXPECT_EQ(answer, "the name of the project \"CLINIC\" is taken");
  EXPECT_FALSE(Send("copyProject", {{"projectName", "Clinic"},
                                    {"newProjectName", "clinic"},
                                    {"newProjectPath", std::string(kProjects) + "clinic"}}));
}

TEST_F(ProjectRequestsTest, AProjectLiesInTheApplicationsOwnFolderOnly) {
  EXPECT_FALSE(Send("addProject", {{"projectName", "Clinic"}, {"projectPath", "C:\\Elsewhere\\Clinic"}}));
  EXPECT_THAT(answer, HasSubstr("C:\\Elsewhere\\Clinic"));
  EXPECT_FALSE(Send("addProject", {{"projectName", "..\\Bin"}, {"projectPath", std::string(kProjects) + "..\\Bin"}}));
  EXPECT_TRUE(
      Send("addProject", {{"projectName", "Clinic"}, {"projectPath", "c:\\korvane\\TQ5-VX\\projects\\Clinic\\"}}));
}

TEST_F(ProjectRequestsTest, AMissingNameOrPathIsRefused) {
  EXPECT_FALSE(Send("addProject", {{"projectName", "Clinic"}}));
  EXPECT_EQ(answer, "the request has no projectPath");
  EXPECT_FALSE(Send("addProject", {{"projectPath", kProjects}}));
  EXPECT_EQ(answer, "the request has no projectName");
  EXPECT_FALSE(Send("getArchiveContents", {{"archiveFile", ""}}));
  EXPECT_EQ(answer, "the request has no archiveFile");
}

TEST_F(ProjectRequestsTest, AnotherGroupThanTheApplicationsOwnIsRefused) {
  EXPECT_FALSE(Send("getProjectList", {{"pdsg", "QRT52"}}));
  EXPECT_EQ(answer, "the product data set group is \"QRT52\" and not KDQ47");
}

TEST_F(ProjectRequestsTest, WhetherAProjectExistsIsAnsweredForEveryName) {
  Add("Clinic");
  for (const auto& [name, status] : Given{{"clinic", "True"}, {"x", "False"}, {"..", "False"}, {"", "False"}}) {
    EXPECT_TRUE(Send("projectExist", {{"projectName", name}})) << name;
    EXPECT_EQ(Text("//STATUS"), status) << name;
  }
}

TEST_F(ProjectRequestsTest, InAFolderExistsOnlyWhatLiesThere) {
  Add("Clinic");
  const std::string folder = std::string(kProjects) + "Clinic";
  const std::vector<std::tuple<std::string, std::string, std::string>> cases = {
      {"Clinic", folder, "1"},       {"CLINIC", folder + "\\", "1"},
      {"Clinic", "C:\\Clinic", "0"}, {"Other", folder, "0"},
      {"Clinic", "", "0"},           {"", folder, "0"}};
  for (const auto& [name, path, code] : cases) {
    EXPECT_TRUE(Send("doesProjectExistInFolder", {{"projectName", name}, {"projectPath", path}}));
    EXPECT_EQ(Text("//STATUS/CODE"), code) << name << " in " << path;
  }
}

TEST_F(ProjectRequestsTest, AProjectIsDeletedAsAWholeOnly) {
  Add("Clinic");
  EXPECT_FALSE(Send("deleteProject", {{"projectName", "Clinic"}, {"dataList", "RTU47"}}));
  EXPECT_TRUE(store.Exists("Clinic"));
  EXPECT_TRUE(Send("deleteProject", {{"projectName", "Clinic"}, {"dataList", "*"}}));
  EXPECT_FALSE(store.Exists("Clinic"));
}

TEST_F(ProjectRequestsTest, AnArchiveTellsWhatItHoldsAndRestoresItByteForByte) {
  Add("Clinic");
  StoreUnits();
  Send("setProject", {{"projectName", "Clinic"}, {"Notes", "n"}});
  ASSERT_TRUE(Send("archiveProject", {{"projectName", "clinic"}, {"dataList", "*"}, {"archiveFile", kArchive}}))
      << answer;
  ASSERT_TRUE(Send("getArchiveContents", {{"archiveFile", kArchive}})) << answer;
  EXPECT_EQ(Text("//PROJECT/NAME"), "Clinic");
  EXPECT_THAT(Texts("//PROJECT/APPLICATIONLIST/APPLICATION/PDSG"), ElementsAre("KDQ47", "RTU47", "XRC47"));

  Add("Again");
  machine.Write(std::string(kProjects) + "Again\\left.over", "x");
  ASSERT_TRUE(Send("retrieveAndSaveProject",
                   {{"projectName", "Again"}, {"archiveFile", kArchive}, {"dataList", "KDQ47,RTU47,XRC47"}}))
      << answer;
  EXPECT_EQ(Text("/PROJECT/PROPERTIES/NOTES"), "n");
  const std::vector<ProjectFile> original = store.ReadFiles("Clinic");
  const std::vector<ProjectFile> restored = store.ReadFiles("Again");
  ASSERT_EQ(restored.size(), original.size());
  for (std::size_t i = 0; i < original.size(); ++i) {
    EXPECT_EQ(restored[i].path, original[i].path);
    EXPECT_EQ(restored[i].bytes, original[i].bytes) << original[i].path;
  }
}

TEST_F(ProjectRequestsTest, APartOfAnArchiveRestoresTheNamedFamiliesOnly) {
  Add("Clinic");
  StoreUnits();
  Send("archiveProject", {{"projectName", "Clinic"}, {"dataList", "*"}, {"archiveFile", kArchive}});
  ASSERT_TRUE(Send("retrieveAndSaveProject",
                   {{"projectName", "Clinic"}, {"archiveFile", kArchive}, {"dataList", "KDQ47, XRC47"}}));
  EXPECT_THAT(UnitNames("Clinic"), ElementsAre("CH-1"));
  EXPECT_FALSE(machine.Exists(std::string(kProjects) + "Clinic\\acc1.blb"));
  const auto database = machine.platform.projectDatabases->Open(std::string(kProjects) + "Clinic\\Project.mdb");
  const auto rows = database->OpenRecordSet("SELECT * FROM TagIndex");
  EXPECT_EQ(rows->Column("sTagName"), "CH-1");
  rows->MoveNext();
  EXPECT_TRUE(rows->AtEnd());
}

TEST_F(ProjectRequestsTest, APartOfAProjectIsArchived) {
  Add("Clinic");
  StoreUnits();
  ASSERT_TRUE(Send("archiveProject", {{"projectName", "Clinic"}, {"dataList", "RTU47"}, {"archiveFile", kArchive}}));
  EXPECT_THAT(Texts("//APPLICATION/PDSG"), ElementsAre("KDQ47", "RTU47"));
  EXPECT_THAT(UnitNames("Clinic"), ElementsAre("RTU-1", "CH-1")) << "the project keeps everything";
  EXPECT_FALSE(Send("archiveProject", {{"projectName", "Clinic"}, {"dataList", ","}, {"archiveFile", kArchive}}));
  EXPECT_EQ(answer, "dataList \",\" names nothing");
}

TEST_F(ProjectRequestsTest, TheArchiveOfAFrontEndThatNamesItsOwnLiesThere) {
  Add("Clinic");
  EXPECT_TRUE(
      Send("archiveProject", {{"projectName", "Clinic"}, {"fileSpec", "C:\\Korvane\\mine.e3a"}, {"dataList", "*"}}));
  EXPECT_TRUE(machine.Exists("C:\\Korvane\\mine.e3a"));
}

TEST_F(ProjectRequestsTest, AnArchiveIsReadAndWrittenUnderAnArchivesNameOnly) {
  Add("Clinic");
  const std::string database = std::string(kProjects) + "Clinic\\project.mdb";
  const std::string before = machine.Read(database);
  EXPECT_FALSE(Send("archiveProject", {{"projectName", "Clinic"}, {"dataList", "*"}, {"archiveFile", database}}));
  EXPECT_THAT(answer, HasSubstr("does not end in .E3A"));
  EXPECT_EQ(machine.Read(database), before);
  EXPECT_FALSE(Send("getArchiveContents", {{"archiveFile", database}}));
}

TEST_F(ProjectRequestsTest, WhatIsNoArchiveOfAProjectIsRefusedAndTheProjectStays) {
  Add("Clinic");
  StoreUnits();
  const std::string database = MakeProjectDatabase({}, {});
  ZipWriter twoProjects;
  twoProjects.Add("A/project.mdb", database, true);
  twoProjects.Add("B/project.mdb", database, true);
  ZipWriter noDatabase;
  noDatabase.Add("A/units.json", FormatUnits({}), true);
  ZipWriter noFolder;
  noFolder.Add("project.mdb", database, true);
  ZipWriter outside;
  outside.Add("A/project.mdb", database, true);
  outside.Add("A/../../evil.txt", "x", true);
  ZipWriter badUnits;
  badUnits.Add("A/project.mdb", database, true);
  badUnits.Add("A/units.json", "{", true);
  ZipWriter badDatabase;
  badDatabase.Add("A/project.mdb", "no database", true);
  const std::string whole = PackProject({"A", {{"project.mdb", database}}});
  const std::pair<const char*, std::string> cases[] = {{"empty", ""},
                                                       {"text", "no archive at all"},
                                                       {"cut", whole.substr(0, whole.size() - 30)},
                                                       {"two projects", twoProjects.Finish()},
                                                       {"no database", noDatabase.Finish()},
                                                       {"no folder", noFolder.Finish()},
                                                       {"leads outside", outside.Finish()},
                                                       {"units that do not parse", badUnits.Finish()},
                                                       {"database that is none", badDatabase.Finish()}};
  for (const auto& [reason, bytes] : cases) {
    machine.Write(kArchive, bytes);
    EXPECT_FALSE(
        Send("retrieveAndSaveProject", {{"projectName", "Clinic"}, {"archiveFile", kArchive}, {"dataList", "KDQ47"}}))
        << reason;
    EXPECT_THAT(UnitNames("Clinic"), ElementsAre("RTU-1", "CH-1")) << reason;
  }
  EXPECT_FALSE(Send("getArchiveContents", {{"archiveFile", "C:\\Korvane\\missing.E3A"}}));
  EXPECT_THAT(answer, HasSubstr("missing.E3A"));
}

TEST_F(ProjectRequestsTest, ARestoreIntoAProjectThatDoesNotExistIsRefused) {
  Add("Clinic");
  Send("archiveProject", {{"projectName", "Clinic"}, {"dataList", "*"}, {"archiveFile", kArchive}});
  EXPECT_FALSE(Send("retrieveAndSaveProject", {{"projectName", "x"}, {"archiveFile", kArchive}, {"dataList", "*"}}));
  EXPECT_FALSE(store.Exists("x"));
}

TEST_F(ProjectRequestsTest, ARequestThatItIsToldToRefuseChangesNothing) {
  application.settings.router.refuse = {"addProject"};
  EXPECT_FALSE(Add("Clinic"));
  EXPECT_FALSE(store.Exists("Clinic"));
}

}  // namespace
}  // namespace parvex::standin
