#include "projects/project_lifecycle.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "tests/support/raised_by.h"
#include "tests/unit/projects/project_machine.h"

namespace parvex::test {
namespace {

using testing::ElementsAre;
using testing::SizeIs;

const std::string kPdsg = Parameter("pdsg", "KDQ47");
const std::string kProject = Parameter("projectName", "Clinic");
const std::string kNewName = Parameter("newProjectName", "Copy");
const std::string kNewPath = Parameter("newProjectPath", "C:\\Korvane\\TQ5-VX\\Projects\\Copy");
const std::string kAskWhetherCopyExists = Sent("projectExist", Parameter("projectName", "Copy") + kPdsg);

std::string Status(const std::string& text) { return "<ANSWER><STATUS>" + text + "</STATUS></ANSWER>"; }

class ProjectLifecycleTest : public testing::Test, protected ProjectMachine {};

TEST_F(ProjectLifecycleTest, AddGivesThePathThatTheFrontEndLeftOut) {
  Answer(true, "");
  EXPECT_EQ(AddProject(link, Command("addProject", kProject)).Xml(), kSuccess);
  EXPECT_THAT(Requests(),
              ElementsAre(Sent("addProject",
                               kProject + Parameter("projectPath", "C:\\Korvane\\TQ5-VX\\Projects\\Clinic") + kPdsg)));
}

TEST_F(ProjectLifecycleTest, AddKeepsAPathThatTheFrontEndGave) {
  Answer(false, "");
  const std::string given = kProject + Parameter("projectPath", "D:\\Elsewhere");
  EXPECT_EQ(AddProject(link, Command("addProject", given)).Xml(), kFailure);
  EXPECT_THAT(Requests(), ElementsAre(Sent("addProject", given + kPdsg)));
}

TEST_F(ProjectLifecycleTest, AddKeepsAnEmptyPathToo) {
  Answer(true, "");
  const std::string given = kProject + Parameter("projectPath", "");
  AddProject(link, Command("addProject", given));
  EXPECT_THAT(Requests(), ElementsAre(Sent("addProject", given + kPdsg)));
}

TEST_F(ProjectLifecycleTest, DeleteSendsTheFrontEndsDocument) {
  Answer(true, "");
  EXPECT_EQ(DeleteProject(link, Command("deleteProject", kProject)).Xml(), kSuccess);
  EXPECT_THAT(Requests(), ElementsAre(Sent("deleteProject", kProject + kPdsg)));
}

TEST_F(ProjectLifecycleTest, CopyAsksForTheNewNameFirst) {
  Answer(true, Status("False"));
  Answer(true, "");
  EXPECT_EQ(CopyProject(link, Command("copyProject", kProject + kNewName)).Xml(), kSuccess);
  EXPECT_THAT(Requests(),
              ElementsAre(kAskWhetherCopyExists, Sent("copyProject", kProject + kNewName + kPdsg + kNewPath)));
}

TEST_F(ProjectLifecycleTest, CopyToANameThatExistsIsRefusedWithItsOwnMessage) {
  for (const char* status : {"True", "true", "TRUE", "-1", "1", " True ", "2.5"}) {
    machine.routers.requests.clear();
    Answer(true, Status(status));
    EXPECT_EQ(CopyProject(link, Command("copyProject", kProject + kNewName)).Xml(), kNameTaken) << status;
    EXPECT_THAT(Requests(), SizeIs(1)) << status;
  }
}

TEST_F(ProjectLifecycleTest, CopyGoesOnWhenTheStatusReadsAsNo) {
  for (const char* status : {"False", "false", "FALSE", "0", " 0 ", "0.0", "-0", "+0", "0e5"}) {
    machine.routers.requests.clear();
    Answer(true, Status(status));
    Answer(true, "");
    EXPECT_EQ(CopyProject(link, Command("copyProject", kProject + kNewName)).Xml(), kSuccess) << status;
    EXPECT_THAT(Requests(), SizeIs(2)) << status;
  }
}

TEST_F(ProjectLifecycleTest, StatusThatIsNoYesOrNoIsATypeMismatch) {
  for (const char* status : {"Yes", "", "1x", "T", "nan", "inf", "+", "-", "+-1", "1 0", "1e999", "."}) {
    Answer(true, Status(status));
    EXPECT_EQ(RaisedBy([&] { CopyProject(link, Command("copyProject", kNewName)); }), 13) << status;
  }
  Answer(true, "<ANSWER/>");
  EXPECT_EQ(RaisedBy([&] { CopyProject(link, Command("copyProject", kNewName)); }), 91) << "no STATUS";
}

TEST_F(ProjectLifecycleTest, ArchiveGivesWhatTheFrontEndLeftOut) {
  Answer(true, "");
  EXPECT_EQ(ArchiveProject(link, Command("archiveProject", kProject)).Xml(), kSuccess);
  EXPECT_THAT(Requests(), ElementsAre(Sent("archiveProject",
                                           kProject + kPdsg + Parameter("dataList", "*") +
                                               Parameter("archiveFile", "C:\\Korvane\\TQ5-VX\\Archives\\Clinic.E3A"))));
}

TEST_F(ProjectLifecycleTest, ArchiveWithAFileSpecGetsNoArchiveFile) {
  Answer(true, "");
  const std::string given = kProject + Parameter("fileSpec", "D:\\a.E3A") + Parameter("dataList", "KDQ47");
  ArchiveProject(link, Command("archiveProject", given));
  EXPECT_THAT(Requests(), ElementsAre(Sent("archiveProject", given + kPdsg)));
}

TEST_F(ProjectLifecycleTest, ArchiveFileOfTheFrontEndDoesNotCountAsFileSpec) {
  Answer(true, "");
  const std::string given = kProject + Parameter("archiveFile", "D:\\a.E3A");
  ArchiveProject(link, Command("archiveProject", given));
  EXPECT_THAT(Requests(), ElementsAre(Sent("archiveProject",
                                           given + kPdsg + Parameter("dataList", "*") +
                                               Parameter("archiveFile", "C:\\Korvane\\TQ5-VX\\Archives\\Clinic.E3A"))));
}

TEST_F(ProjectLifecycleTest, RenameCopiesAndDeletesTheOldProject) {
  Answer(true, Status("0"));
  Answer(true, Status("0"));
  Answer(true, "");
  Answer(true, "");
  EXPECT_EQ(RenameProject(link, Command("renameProject", kProject + kNewName)).Xml(), kSuccess);
  const std::string copied = kProject + kNewName + kPdsg + kNewPath + kPdsg + kNewPath;
  EXPECT_THAT(Requests(), ElementsAre(kAskWhetherCopyExists, kAskWhetherCopyExists, Sent("copyProject", copied),
                                      Sent("deleteProject", copied + Parameter("dataList", "*"))));
}

TEST_F(ProjectLifecycleTest, RenameToANameThatExistsCopiesAndDeletesNothing) {
  Answer(true, Status("True"));
  EXPECT_EQ(RenameProject(link, Command("renameProject", kProject + kNewName)).Xml(), kNameTaken);
  EXPECT_THAT(Requests(), ElementsAre(kAskWhetherCopyExists));
}

TEST_F(ProjectLifecycleTest, RenameWhoseCopyFailsDeletesNothing) {
  Answer(true, Status("False"));
  Answer(true, Status("False"));
  Answer(false, "");
  EXPECT_EQ(RenameProject(link, Command("renameProject", kProject + kNewName)).Xml(), kFailure);
  EXPECT_THAT(Requests(), SizeIs(3));
}

TEST_F(ProjectLifecycleTest, RenameWhoseNameIsTakenBetweenTheTwoQuestionsIsTheFailedReply) {
  Answer(true, Status("False"));
  Answer(true, Status("True"));
  EXPECT_EQ(RenameProject(link, Command("renameProject", kProject + kNewName)).Xml(), kFailure);
  EXPECT_THAT(Requests(), SizeIs(2));
}

TEST_F(ProjectLifecycleTest, RenameWhoseDeleteFailsLeavesTheCopy) {
  Answer(true, Status("False"));
  Answer(true, Status("False"));
  Answer(true, "");
  Answer(false, "");
  EXPECT_EQ(RenameProject(link, Command("renameProject", kProject + kNewName)).Xml(), kFailure);
  EXPECT_THAT(Requests(), SizeIs(4));
}

const std::string kRetrieve = kProject + Parameter("fileSpec", "D:\\a.E3A") + Parameter("FOLDER", "C:\\P\\Clinic");
const std::string kContents =
    "<ARCHIVE><PROJECT><APPLICATIONLIST><APPLICATION><PDSG>KDQ47</PDSG></APPLICATION>"
    "<APPLICATION><PDSG>QRT52</PDSG></APPLICATION></APPLICATIONLIST></PROJECT></ARCHIVE>";
const std::string kRestored = Parameter("archiveFile", "D:\\a.E3A") + Parameter("dataList", "KDQ47,QRT52") + kPdsg;

std::string StatusCode(const std::string& text) { return "<STATUS><CODE>" + text + "</CODE></STATUS>"; }

TEST_F(ProjectLifecycleTest, RetrieveIntoAProjectThatExists) {
  Answer(true, kContents);
  Answer(true, StatusCode("True"));
  Answer(true, "");
  EXPECT_EQ(RetrieveProject(link, Command("retrieveProject", kRetrieve)).Xml(), kSuccess);
  EXPECT_THAT(Requests(), ElementsAre(Sent("getArchiveContents", kPdsg + Parameter("archiveFile", "D:\\a.E3A")),
                                      Sent("doesProjectExistInFolder",
                                           kPdsg + kProject + Parameter("projectPath", "C:\\P\\Clinic")),
                                      Sent("retrieveAndSaveProject", kRetrieve + kRestored)));
}

TEST_F(ProjectLifecycleTest, RetrieveMakesAProjectThatDoesNotExistWhateverComesOfIt) {
  for (const bool added : {true, false}) {
    machine.routers.requests.clear();
    Answer(true, kContents);
    Answer(true, StatusCode("False"));
    Answer(added, "");
    Answer(true, "");
    EXPECT_EQ(RetrieveProject(link, Command("retrieveProject", kRetrieve)).Xml(), kSuccess);
    const std::string made = kRetrieve + Parameter("projectPath", "C:\\Korvane\\TQ5-VX\\Projects\\Clinic") + kPdsg;
    ASSERT_THAT(Requests(), SizeIs(4));
    EXPECT_EQ(Requests()[2], Sent("addProject", made));
    EXPECT_EQ(Requests()[3], Sent("retrieveAndSaveProject", made + kRestored));
  }
}

TEST_F(ProjectLifecycleTest, RetrieveOfAnArchiveThatIsRefusedAsksNothingMore) {
  Answer(false, kContents);
  EXPECT_EQ(RetrieveProject(link, Command("retrieveProject", kRetrieve)).Xml(), kFailure);
  EXPECT_THAT(Requests(), SizeIs(1));
}

TEST_F(ProjectLifecycleTest, RetrieveWhoseRestoringIsRefusedIsTheFailedReply) {
  Answer(true, kContents);
  Answer(true, StatusCode("1"));
  Answer(false, "");
  EXPECT_EQ(RetrieveProject(link, Command("retrieveProject", kRetrieve)).Xml(), kFailure);
  EXPECT_THAT(Requests(), SizeIs(3));
}

TEST_F(ProjectLifecycleTest, RetrieveLooksAtTheAnswerOfAQuestionThatWasRefused) {
  Answer(true, kContents);
  Answer(false, StatusCode("1"));
  Answer(true, "");
  EXPECT_EQ(RetrieveProject(link, Command("retrieveProject", kRetrieve)).Xml(), kSuccess);
  Answer(true, kContents);
  Answer(false, "no such folder");
  EXPECT_EQ(RaisedBy([&] { RetrieveProject(link, Command("retrieveProject", kRetrieve)); }), 91);
}

TEST_F(ProjectLifecycleTest, RetrieveEndsTheCallWhenAnAnswerLacksAnElement) {
  Answer(true, "<PROJECT><APPLICATIONLIST><APPLICATION/></APPLICATIONLIST></PROJECT>");
  EXPECT_EQ(RaisedBy([&] { RetrieveProject(link, Command("retrieveProject", kRetrieve)); }), 91) << "no PDSG";
  Answer(true, kContents);
  Answer(true, "<STATUS>1</STATUS>");
  EXPECT_EQ(RaisedBy([&] { RetrieveProject(link, Command("retrieveProject", kRetrieve)); }), 91) << "no CODE";
  Answer(true, kContents);
  Answer(true, StatusCode("maybe"));
  EXPECT_EQ(RaisedBy([&] { RetrieveProject(link, Command("retrieveProject", kRetrieve)); }), 13);
}

TEST_F(ProjectLifecycleTest, RetrieveKeepsAProjectPathThatTheFrontEndGave) {
  const std::string given = kRetrieve + Parameter("projectPath", "D:\\P");
  Answer(true, kContents);
  Answer(true, StatusCode("False"));
  Answer(true, "");
  Answer(true, "");
  RetrieveProject(link, Command("retrieveProject", given));
  EXPECT_EQ(Requests()[2], Sent("addProject", given + kPdsg));
  EXPECT_EQ(Requests()[3], Sent("retrieveAndSaveProject", given + kPdsg + kRestored));
}

TEST_F(ProjectLifecycleTest, RetrieveWithoutParametersAsksWithEmptyValues) {
  Answer(true, kContents);
  Answer(true, StatusCode("1"));
  Answer(true, "");
  RetrieveProject(link, Command("retrieveProject"));
  EXPECT_THAT(
      Requests(),
      ElementsAre(
          Sent("getArchiveContents", kPdsg + Parameter("archiveFile", "")),
          Sent("doesProjectExistInFolder", kPdsg + Parameter("projectName", "") + Parameter("projectPath", "")),
          Sent("retrieveAndSaveProject", Parameter("archiveFile", "") + Parameter("dataList", "KDQ47,QRT52") + kPdsg)));
}

TEST_F(ProjectLifecycleTest, RouterThatFailsOnTheWayEndsTheCall) {
  machine.routers.onRequest = [](const std::string&, std::string&) -> bool {
    throw MakeRuntimeError(RuntimeError::CannotCreateObject, "the router went away");
  };
  for (const auto handler : {AddProject, DeleteProject, CopyProject, RenameProject, ArchiveProject, RetrieveProject}) {
    EXPECT_EQ(RaisedBy([&] { handler(link, Command("any", kProject + kNewName)); }), 429);
  }
}

TEST_F(ProjectLifecycleTest, RetrieveOfAnArchiveWithoutApplicationsSendsAnEmptyList) {
  Answer(true, "<ARCHIVE/>");
  Answer(true, StatusCode("-1"));
  Answer(true, "");
  RetrieveProject(link, Command("retrieveProject", kRetrieve));
  EXPECT_EQ(Requests().back(), Sent("retrieveAndSaveProject", kRetrieve + Parameter("archiveFile", "D:\\a.E3A") +
                                                                  Parameter("dataList", "") + kPdsg));
}

TEST_F(ProjectLifecycleTest, WithoutBinPathThePathsBeginWithWhatTheDataRootGave) {
  machine.SetBinPath("");
  Answer(true, "");
  AddProject(link, Command("addProject", kProject));
  EXPECT_THAT(Requests(),
              ElementsAre(Sent("addProject", kProject + Parameter("projectPath", "\\Projects\\Clinic") + kPdsg)));
}

}  // namespace
}  // namespace parvex::test
