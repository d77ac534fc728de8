// The whole life of a project, walked through with the commands of the sample machine.

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "seams/xml.h"
#include "tests/cli/program.h"
#include "tests/support/jet_readers.h"

namespace parvex::test {
namespace {

using testing::ElementsAre;
using testing::HasSubstr;
using testing::Not;

constexpr const char* kSuccess = "<LegacyORLA><returnError>0</returnError><errorMessage/></LegacyORLA>\r\n";

class ProjectsWalk : public testing::Test {
 protected:
  void SetUp() override { ASSERT_EQ(RunParvex({"machine", "create", machine_}).status, 0); }

  /// Sends a command of the sample machine.
  Outcome Send(const std::string& file) { return SendFile(machine_ + "/commands/" + file + ".xml"); }
  Outcome SendFile(const std::string& path) {
    return RunParvex({"--machine", machine_, "--journal", Path("journal"), "pull", path});
  }
  /// Sends one that is written for it.
  Outcome Send(const std::string& name, const std::vector<std::pair<std::string, std::string>>& parameters) {
    WriteHostFile(Path("command.xml"), CommandText(name, parameters));
    return SendFile(Path("command.xml"));
  }
  void SendUpTo(int last) {
    const char* const files[] = {"project-01-add",     "project-02-set-properties", "project-03-list",
                                 "project-04-copy",    "project-05-rename",         "project-06-properties",
                                 "project-07-archive", "project-08-delete",         "project-09-retrieve"};
    for (int i = 0; i < last; ++i) {
      const Outcome outcome = Send(files[i]);
      ASSERT_EQ(outcome.status, 0) << files[i] << outcome.out << outcome.err;
    }
  }

  void Refuse(const std::string& name) {
    WriteHostFile(machine_ + "/standin.json", "{\"router\":{\"refuse\":[\"" + name + "\"]}}");
  }

  std::vector<std::string> Projects() {
    std::vector<std::string> names;
    for (const xml::Node& name : xml::Document::Parse(Send("project-03-list").out).All("//PROJECT/NAME")) {
      names.push_back(name.Text());
    }
    return names;
  }

  std::string Path(const std::string& name) const { return (folder_.Path() / name).string(); }
  std::filesystem::path Root() const { return folder_.Path() / "sample/drive_c/Korvane/TQ5-VX"; }
  std::string Database(const std::string& project) const {
    return ReadHostFile(Root() / "Projects" / project / "project.mdb");
  }
  std::vector<std::string> RequestsSent() const {
    const std::string journal = ReadHostFile(Path("journal"));
    std::vector<std::string> names;
    for (std::size_t at = 0; (at = journal.find("<COMMAND><NAME>", at)) != std::string::npos;) {
      at += 15;
      names.push_back(journal.substr(at, journal.find('<', at) - at));
    }
    return names;
  }

 private:
  TemporaryFolder folder_;
  const std::string machine_ = Path("sample");
};

TEST_F(ProjectsWalk, AnAddedProjectIsListed) {
  EXPECT_EQ(Send("project-01-add").out, kSuccess);
  EXPECT_THAT(Projects(), ElementsAre("Harbour", "Riverside Clinic"));
}

TEST_F(ProjectsWalk, PropertiesThatWereSetAreReadBack) {
  SendUpTo(2);
  const xml::Document reply = xml::Document::Parse(Send("getProjectProperties", {{"projectName", "harbour"}}).out);
  std::vector<std::string> properties;
  for (const xml::Node& property : reply.All("/PROJECT/PROPERTIES/*")) {
    properties.push_back(property.Name() + "=" + property.Text());
  }
  EXPECT_THAT(properties, ElementsAre("DESCRIPTION=New wing", "CUSTOMER=", "LOCATION=Quay 4",
                                      "ENGINEER=", "NOTES=", "COMPANYNAME=Ødegård & Söhne",
                                      "EMAILID=office@odegard.example", "CONTACTNUMBER=+1 555 0162"));
}

TEST_F(ProjectsWalk, ACopyHasThePropertiesOfItsOriginal) {
  SendUpTo(4);
  EXPECT_THAT(Projects(), ElementsAre("Harbour", "Harbour Annex", "Riverside Clinic"));
  EXPECT_THAT(Send("getProjectProperties", {{"projectName", "Harbour Annex"}}).out, HasSubstr("Ødegård &amp; Söhne"));
}

TEST_F(ProjectsWalk, ARenamedProjectKeepsItsPropertiesAndLosesItsOldName) {
  SendUpTo(5);
  EXPECT_THAT(RequestsSent(), ElementsAre("projectExist", "projectExist", "copyProject", "deleteProject"));
  EXPECT_THAT(Projects(), ElementsAre("Harbour Annex", "Harbour School", "Riverside Clinic"));
  EXPECT_THAT(Send("project-06-properties").out, HasSubstr("<CONTACTNUMBER>+1 555 0162</CONTACTNUMBER>"));
}

TEST_F(ProjectsWalk, AnArchivedAndDeletedProjectComesBackAsItWas) {
  SendUpTo(7);
  const std::string database = Database("Harbour School");
  EXPECT_TRUE(std::filesystem::exists(Root() / "Archives/Harbour School.E3A"));
  ASSERT_EQ(Send("project-08-delete").status, 0);
  EXPECT_THAT(Projects(), ElementsAre("Harbour Annex", "Riverside Clinic"));

  EXPECT_EQ(Send("project-09-retrieve").out, kSuccess);
  EXPECT_THAT(RequestsSent(),
              ElementsAre("getArchiveContents", "doesProjectExistInFolder", "addProject", "retrieveAndSaveProject"));
  EXPECT_THAT(Projects(), ElementsAre("Harbour Annex", "Harbour School", "Riverside Clinic"));
  EXPECT_THAT(Send("project-06-properties").out, HasSubstr("<LOCATION>Quay 4</LOCATION>"));
  EXPECT_THAT(Send("project-06-properties").out, HasSubstr("Ødegård &amp; Söhne"));
}

TEST_F(ProjectsWalk, AnArchiveIsRestoredOverAProjectThatIsThere) {
  SendUpTo(7);
  ASSERT_EQ(Send("setProjectProperties", {{"projectName", "Harbour School"}, {"CompanyName", "Later"}}).status, 0);
  EXPECT_EQ(Send("project-09-retrieve").out, kSuccess);
  EXPECT_THAT(RequestsSent(), ElementsAre("getArchiveContents", "doesProjectExistInFolder", "retrieveAndSaveProject"));
  EXPECT_THAT(Send("project-06-properties").out, HasSubstr("Ødegård &amp; Söhne"));
}

TEST_F(ProjectsWalk, AProjectWithTagsSurvivesArchivingAndExportsAsBefore) {
  const std::string command = Path("sample") + "/commands/getHybrisXMLNoUI.xml";
  const auto exportAll = [&] { return RunParvex({"--machine", Path("sample"), "pull-ngorla", command}); };
  const Outcome before = exportAll();
  ASSERT_EQ(before.status, 0) << before.err;
  ASSERT_EQ(Send("archiveProject", {{"projectName", "Riverside Clinic"}}).out, kSuccess);
  ASSERT_EQ(Send("deleteProject", {{"projectName", "Riverside Clinic"}}).out, kSuccess);
  ASSERT_NE(exportAll().status, 0);
  ASSERT_EQ(Send("retrieveProject", {{"projectName", "Riverside Clinic"},
                                     {"fileSpec", "C:\\Korvane\\TQ5-VX\\Archives\\Riverside Clinic.E3A"},
                                     {"FOLDER", "C:\\Korvane\\TQ5-VX\\Projects\\Riverside Clinic"}})
                .out,
            kSuccess);
  EXPECT_EQ(before.out, exportAll().out);
}

TEST_F(ProjectsWalk, ANameThatExistsIsRefusedWithItsOwnMessage) {
  SendUpTo(4);
  for (const char* command : {"copyProject", "renameProject"}) {
    const Outcome outcome = Send(command, {{"projectName", "Harbour"}, {"newProjectName", "riverside clinic"}});
    EXPECT_EQ(outcome.status, 1);
    EXPECT_EQ(outcome.out, FailedReply("A Project of that name already exists")) << command;
  }
  EXPECT_EQ(FailedReply(), Send("addProject", {{"projectName", "HARBOUR"}}).out);
  EXPECT_THAT(Projects(), ElementsAre("Harbour", "Harbour Annex", "Riverside Clinic"));
}

TEST_F(ProjectsWalk, AnUnknownProjectIsTheFailedReply) {
  for (const char* command : {"getProjectProperties", "setProjectProperties", "deleteProject", "archiveProject",
                              "copyProject", "renameProject"}) {
    EXPECT_EQ(FailedReply(), Send(command, {{"projectName", "x"}, {"newProjectName", "y"}}).out) << command;
  }
  EXPECT_EQ(FailedReply(), Send("retrieveProject", {{"projectName", "x"}, {"fileSpec", "C:\\missing.E3A"}}).out);
  EXPECT_THAT(Projects(), ElementsAre("Riverside Clinic"));
}

TEST_F(ProjectsWalk, ANameThatNoFolderCanHaveIsTheFailedReplyAndMakesNothing) {
  for (const char* name : {"..", "..\\Bin", "C:\\x", "con", "a?", ""}) {
    EXPECT_EQ(FailedReply(), Send("addProject", {{"projectName", name}}).out) << name;
  }
  EXPECT_THAT(Projects(), ElementsAre("Riverside Clinic"));
}

TEST_F(ProjectsWalk, EachRequestRefusedIsTheFailedReplyAndTheProjectsStay) {
  SendUpTo(7);
  const std::vector<std::string> before = Projects();
  const std::pair<const char*, const char*> cases[] = {
      {"getProjectList", "project-03-list"},         {"addProject", "project-01-add"},
      {"setProject", "project-02-set-properties"},   {"getProjectEx", "project-06-properties"},
      {"archiveProject", "project-07-archive"},      {"deleteProject", "project-08-delete"},
      {"getArchiveContents", "project-09-retrieve"}, {"retrieveAndSaveProject", "project-09-retrieve"}};
  for (const auto& [request, command] : cases) {
    Refuse(request);
    const Outcome outcome = Send(command);
    EXPECT_EQ(outcome.status, 1) << request << outcome.err;
    EXPECT_EQ(outcome.out, FailedReply()) << request;
  }
  Refuse("nothing");
  EXPECT_EQ(before, Projects());
}

TEST_F(ProjectsWalk, ARenameWhoseDeletionIsRefusedLeavesBothProjects) {
  SendUpTo(3);
  Refuse("deleteProject");
  EXPECT_EQ(FailedReply(), Send("project-05-rename").out);
  EXPECT_THAT(Projects(), ElementsAre("Harbour", "Harbour School", "Riverside Clinic"));
}

TEST_F(ProjectsWalk, ARenameWhoseCopyIsRefusedLeavesTheOldProject) {
  SendUpTo(3);
  Refuse("copyProject");
  EXPECT_EQ(FailedReply(), Send("project-05-rename").out);
  EXPECT_THAT(Projects(), ElementsAre("Harbour", "Riverside Clinic"));
}

TEST_F(ProjectsWalk, ARefusedQuestionEndsTheCallSinceItsAnswerIsNoDocument) {
  SendUpTo(3);
  Refuse("projectExist");
  const Outcome outcome = Send("project-04-copy");
  EXPECT_EQ(outcome.status, 3);
  EXPECT_EQ(outcome.out, "");
  EXPECT_THAT(outcome.err, HasSubstr("STATUS"));
  EXPECT_THAT(Projects(), Not(testing::Contains("Harbour Annex")));
}

TEST_F(ProjectsWalk, ADatabaseThatIsNoneEndsTheCallAndStaysAsItIs) {
  SendUpTo(1);
  const std::filesystem::path database = Root() / "Projects/Harbour/project.mdb";
  const std::string whole = ReadHostFile(database);
  for (const std::string& bytes : {std::string("no database"), std::string(), whole.substr(0, whole.size() / 2)}) {
    WriteHostFile(database, bytes);
    const Outcome outcome = Send("project-02-set-properties");
    EXPECT_EQ(outcome.status, 3) << bytes.size() << outcome.out;
    EXPECT_THAT(outcome.err, HasSubstr("Harbour\\Project.mdb"));
    EXPECT_EQ(bytes, ReadHostFile(database));
  }
}

TEST_F(ProjectsWalk, TheDatabasesOfAllStepsAreReadByIndependentReaders) {
  SendUpTo(9);
  for (const char* project : {"Harbour Annex", "Harbour School"}) {
    const std::string database = Database(project);
    const auto exported = MdbExport(database, "Config");
    const auto read = MdbReader(database, "Config");
    if (!exported || !read) {
      GTEST_SKIP() << "mdb-export or mdb-reader is not installed";
    }
    const auto expected = ElementsAre("KDQ47|CompanyName|Ødegård & Söhne", "KDQ47|EmailID|office@odegard.example",
                                      "KDQ47|ContactNumber|+1 555 0162");
    EXPECT_THAT(*exported, expected) << project;
    EXPECT_THAT(*read, expected) << project;
    EXPECT_THAT(*MdbReader(database), testing::IsSupersetOf({"Config", "TagIndex"}));
    EXPECT_THAT(*MdbExport(database, "TagIndex"), testing::IsEmpty());
  }
}

}  // namespace
}  // namespace parvex::test
