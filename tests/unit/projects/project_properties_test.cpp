#include "projects/project_properties.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "tests/support/full_disk.h"
#include "tests/support/raised_by.h"
#include "tests/unit/projects/project_machine.h"

namespace parvex::test {
namespace {

using testing::ElementsAre;
using testing::UnorderedElementsAre;

class ProjectPropertiesTest : public testing::Test, protected ProjectMachine {
 protected:
  using Row = ProjectMachine::Row;

  const std::string folderAnswer_ = "<PROJECT><FOLDER>" + std::string(kFolder) + "</FOLDER></PROJECT>";
  const std::string folderRequest_ =
      Sent("getProjectEx", Parameter("pdsg", "KDQ47") + Parameter("projectName", "Clinic"));

  void AnswerProject() {
    Answer(true, "<PROJECT><NAME>Clinic</NAME><PROPERTIES><A>1</A></PROPERTIES></PROJECT>");
    Answer(true, folderAnswer_);
  }
  std::string Properties() { return GetProjectProperties(link, Command("getProjectProperties")).Xml(); }
  void Store(const std::string& company, const std::string& email, const std::string& number) {
    Answer(true, "<STORED/>");
    Answer(true, folderAnswer_);
    SetProjectProperties(
        link, Command("setProjectProperties", Parameter("projectName", "Clinic") + Parameter("CompanyName", company) +
                                                  Parameter("EmailID", email) + Parameter("ContactNumber", number)));
  }
};

TEST_F(ProjectPropertiesTest, ListSendsOneFixedTextWhateverTheFrontEndGave) {
  Answer(true, "<LIST/>");
  GetProjectList(link, Command("getProjectList", Parameter("projectName", "x") + Parameter("pdsg", "y")));
  EXPECT_THAT(Requests(), ElementsAre("<COMMAND><NAME>getProjectList</NAME><PARAMETER><NAME>pdsg</NAME>"
                                      "<VALUE>KDQ47</VALUE></PARAMETER></COMMAND>"));
}

TEST_F(ProjectPropertiesTest, ListIsTheRoutersAnswerAsItStands) {
  Answer(true, "<PROJECTS><P n=\"1\"/></PROJECTS>");
  EXPECT_EQ(GetProjectList(link, Command("getProjectList")).Xml(), "<PROJECTS><P n=\"1\"/></PROJECTS>\r\n");
}

TEST_F(ProjectPropertiesTest, ListRefusedIsTheFailedReply) {
  Answer(false, "<WHY/>");
  EXPECT_EQ(GetProjectList(link, Command("getProjectList")).Xml(), kFailure);
}

TEST_F(ProjectPropertiesTest, AreAskedForInTheFrontEndsOwnDocument) {
  WriteConfig({});
  AnswerProject();
  const xml::Document command = Command("getProjectProperties", Parameter("projectName", "Clinic"));
  GetProjectProperties(link, command);
  EXPECT_THAT(Requests(),
              ElementsAre(Sent("getProjectEx", Parameter("projectName", "Clinic") + Parameter("pdsg", "KDQ47")),
                          folderRequest_));
  EXPECT_EQ(command.First("//NAME").Text(), "getProjectEx") << "changed in place";
}

TEST_F(ProjectPropertiesTest, GetTheContactDataBehindTheirOwn) {
  WriteConfig({{"KDQ47", "EmailID", "a@b"}, {"KDQ47", "CompanyName", "Größe & Co"}, {"KDQ47", "ContactNumber", "7"}});
  AnswerProject();
  EXPECT_EQ(Properties(),
            "<PROJECT><NAME>Clinic</NAME><PROPERTIES><A>1</A><COMPANYNAME>Größe &amp; Co</COMPANYNAME>"
            "<EMAILID>a@b</EMAILID><CONTACTNUMBER>7</CONTACTNUMBER></PROPERTIES></PROJECT>\r\n");
}

TEST_F(ProjectPropertiesTest, WithoutRowsHaveTheThreeElementsEmpty) {
  WriteConfig({{"QRT52", "CompanyName", "other group"}, {"KDQ47", "Other", "x"}});
  AnswerProject();
  EXPECT_EQ(Properties(),
            "<PROJECT><NAME>Clinic</NAME><PROPERTIES><A>1</A><COMPANYNAME/><EMAILID/><CONTACTNUMBER/></PROPERTIES>"
            "</PROJECT>\r\n");
}

TEST_F(ProjectPropertiesTest, TakeTheLastOfSeveralRowsAndANullAsEmpty) {
  WriteConfig(
      {{"KDQ47", "CompanyName", "first"}, {"KDQ47", "CompanyName", "last"}, {"KDQ47", "EmailID", std::nullopt}});
  const ProjectContact contact = ReadProjectConfig(machine.platform, kFolder);
  EXPECT_EQ(contact.companyName, "last");
  EXPECT_EQ(contact.emailId, "");
}

TEST_F(ProjectPropertiesTest, RefusedAreTheFailedReplyAndNothingElseIsAsked) {
  Answer(false, "");
  EXPECT_EQ(Properties(), kFailure);
  EXPECT_EQ(Requests().size(), 1u);
}

TEST_F(ProjectPropertiesTest, AnswerWithoutTheNeededElementsEndsTheCall) {
  WriteConfig({});
  for (const char* answer : {"<PROJECT><PROPERTIES/></PROJECT>", "not xml", ""}) {
    Answer(true, answer);
    EXPECT_EQ(RaisedBy([&] { Properties(); }), 91) << answer;
    machine.routers.answers.clear();
  }
  Answer(true, "<PROJECT><NAME>Clinic</NAME></PROJECT>");
  Answer(true, folderAnswer_);
  EXPECT_EQ(RaisedBy([&] { Properties(); }), 91) << "no PROPERTIES";
  Answer(true, "<PROJECT><NAME>Clinic</NAME><PROPERTIES/></PROJECT>");
  Answer(true, "<PROJECT/>");
  EXPECT_EQ(RaisedBy([&] { Properties(); }), 91) << "no FOLDER";
}

TEST_F(ProjectPropertiesTest, MissingDatabaseEndsTheCall) {
  AnswerProject();
  EXPECT_EQ(RaisedBy([&] { Properties(); }), 76) << "no folder";
  machine.platform.files->CreateFolder(kFolder);
  AnswerProject();
  EXPECT_EQ(RaisedBy([&] { Properties(); }), 53) << "no file";
  EXPECT_EQ(RaisedBy([&] { Store("c", "e", "n"); }), 53);
  EXPECT_FALSE(machine.Exists(kDatabase)) << "storing makes no database";
}

TEST_F(ProjectPropertiesTest, DatabaseThatIsNoneEndsTheCallAndStaysAsItIs) {
  WriteConfig({{"KDQ47", "CompanyName", "old"}});
  const std::string whole = machine.Read(kDatabase);
  for (const std::string& bytes :
       {std::string("no database"), std::string(), whole.substr(0, 100), whole.substr(0, 4096),
        whole.substr(0, whole.size() - 1), std::string(whole.size(), '\0')}) {
    machine.Write(kDatabase, bytes);
    AnswerProject();
    EXPECT_EQ(RaisedBy([&] { Properties(); }), 3343) << bytes.size();
    EXPECT_EQ(RaisedBy([&] { Store("c", "e", "n"); }), 3343) << bytes.size();
    EXPECT_TRUE(machine.Read(kDatabase) == bytes) << bytes.size();
  }
}

TEST_F(ProjectPropertiesTest, AreStoredWithTheirRequestInOrder) {
  WriteConfig({});
  Store("c", "e", "n");
  EXPECT_THAT(Requests(),
              ElementsAre(Sent("setProject", Parameter("projectName", "Clinic") + Parameter("CompanyName", "c") +
                                                 Parameter("EmailID", "e") + Parameter("ContactNumber", "n") +
                                                 Parameter("pdsg", "KDQ47") + Parameter("bUserInput", "-1")),
                          folderRequest_));
}

TEST_F(ProjectPropertiesTest, StoredReplyIsTheRoutersAnswer) {
  WriteConfig({});
  Answer(true, "<STORED ok=\"1\"/>");
  Answer(true, folderAnswer_);
  EXPECT_EQ(SetProjectProperties(link, Command("setProjectProperties", Parameter("projectName", "Clinic"))).Xml(),
            "<STORED ok=\"1\"/>\r\n");
}

TEST_F(ProjectPropertiesTest, StoredTwiceEditTheRowsOfTheFirstTime) {
  WriteConfig({});
  Store("c", "e", "n");
  Store("a much longer company name than before, beyond ASCII: Größe", "", "n2");
  EXPECT_THAT(ReadConfig(), UnorderedElementsAre(Row{"KDQ47", "CompanyName",
                                                     "a much longer company name than before, beyond ASCII: Größe"},
                                                 Row{"KDQ47", "EmailID", ""}, Row{"KDQ47", "ContactNumber", "n2"}));
}

TEST_F(ProjectPropertiesTest, StoringLeavesRowsOfOtherGroupsAlone) {
  WriteConfig({{"QRT52", "CompanyName", "other"}, {"KDQ47", "CompanyName", "old"}, {"KDQ47", "Other", "kept"}});
  Store("new", "e", "n");
  EXPECT_THAT(ReadConfig(), UnorderedElementsAre(Row{"QRT52", "CompanyName", "other"},
                                                 Row{"KDQ47", "CompanyName", "new"}, Row{"KDQ47", "Other", "kept"},
                                                 Row{"KDQ47", "EmailID", "e"}, Row{"KDQ47", "ContactNumber", "n"}));
}

TEST_F(ProjectPropertiesTest, StoringWithoutParametersWritesEmptyValues) {
  WriteConfig({{"KDQ47", "CompanyName", "old"}});
  Answer(true, "<STORED/>");
  Answer(true, folderAnswer_);
  SetProjectProperties(link, Command("setProjectProperties", Parameter("projectName", "Clinic")));
  EXPECT_THAT(ReadConfig(), UnorderedElementsAre(Row{"KDQ47", "CompanyName", ""}, Row{"KDQ47", "EmailID", ""},
                                                 Row{"KDQ47", "ContactNumber", ""}));
}

TEST_F(ProjectPropertiesTest, StoringRefusedLeavesTheDatabaseUntouched) {
  WriteConfig({{"KDQ47", "CompanyName", "old"}});
  const std::string before = machine.Read(kDatabase);
  Answer(false, "");
  EXPECT_EQ(SetProjectProperties(link, Command("setProjectProperties", Parameter("projectName", "Clinic"))).Xml(),
            kFailure);
  EXPECT_EQ(machine.Read(kDatabase), before);
}

TEST_F(ProjectPropertiesTest, StoringIntoADatabaseWithoutConfigLeavesItAsItWas) {
  const standin::JetTable other{"Other", {{"sKey"}}, {}};
  machine.Write(kDatabase, standin::MakeJetDatabase({&other, 1}));
  const std::string before = machine.Read(kDatabase);
  EXPECT_EQ(RaisedBy([&] { Store("c", "e", "n"); }), 3078);
  EXPECT_EQ(machine.Read(kDatabase), before);
}

TEST_F(ProjectPropertiesTest, StoringIntoAReadOnlyDatabaseLeavesItAsItWas) {
  WriteConfig({{"KDQ47", "CompanyName", "old"}});
  const std::string before = machine.Read(kDatabase);
  const auto host = machine.folder.Path() / "drive_c/Korvane/TQ5-VX/Projects/Clinic/Project.mdb";
  std::filesystem::permissions(host, std::filesystem::perms::owner_read);
  EXPECT_EQ(RaisedBy([&] { Store("c", "e", "n"); }), 75);
  EXPECT_EQ(machine.Read(kDatabase), before);
}

TEST_F(ProjectPropertiesTest, StoringOnAFullDiskLeavesEachSettingOldOrNew) {
  for (int room = 0; room <= 3; ++room) {
    WriteConfig({{"KDQ47", "CompanyName", "old"}, {"KDQ47", "EmailID", "old"}, {"KDQ47", "ContactNumber", "old"}});
    FullDisk disk(machine.platform, room);
    EXPECT_EQ(RaisedBy([&] {
                WriteProjectConfig(disk.OfMachine(), kFolder, {"new", "new", "new"});
              }),
              room < 3 ? 61 : 0);
    const auto value = [&](int setting) { return room > setting ? "new" : "old"; };
    EXPECT_THAT(ReadConfig(), ElementsAre(Row{"KDQ47", "CompanyName", value(0)}, Row{"KDQ47", "EmailID", value(1)},
                                          Row{"KDQ47", "ContactNumber", value(2)}));
  }
}

TEST_F(ProjectPropertiesTest, LetterCaseOfGroupAndKeyIsIgnoredWhenStoredAndCountsForTheKeyWhenRead) {
  WriteConfig({{"kdq47", "companyname", "old"}, {"kdq47", "EmailID", "e"}});
  const ProjectContact read = ReadProjectConfig(machine.platform, kFolder);
  EXPECT_EQ(read.companyName, "");
  EXPECT_EQ(read.emailId, "e");
  Store("new", "e", "n");
  EXPECT_THAT(ReadConfig(), ElementsAre(Row{"kdq47", "companyname", "new"}, Row{"kdq47", "EmailID", "e"},
                                        Row{"KDQ47", "ContactNumber", "n"}));
}

TEST_F(ProjectPropertiesTest, StoredAreThoseOfTheProjectThatTheFrontEndNamed) {
  WriteConfig({});
  Answer(true, "not xml");
  Answer(true, folderAnswer_);
  const xml::Document reply =
      SetProjectProperties(link, Command("setProjectProperties", Parameter("projectName", "Clinic")));
  EXPECT_TRUE(reply.IsEmpty()) << "an answer that does not parse is passed on as an empty document";
  EXPECT_EQ(Requests().back(), folderRequest_);
}

TEST_F(ProjectPropertiesTest, AnswerOfTheFolderQuestionCountsWhetherOrNotTheRouterAgreed) {
  Answer(false, folderAnswer_);
  EXPECT_EQ(GetProjectFolder(link, "Clinic"), kFolder);
  Answer(false, "unknown project");
  EXPECT_EQ(RaisedBy([&] { GetProjectFolder(link, "Clinic"); }), 91);
}

/// Databases that somebody else holds: the engine refuses to open them.
class LockedDatabases : public ProjectDatabases {
 public:
  std::unique_ptr<Database> Open(std::string_view path) override {
    throw AutomationError(0x800A0BE5, "DAO.Database", "Couldn't use '" + std::string(path) + "'; file already in use.");
  }
};

TEST_F(ProjectPropertiesTest, LockedDatabaseEndsTheCallWithTheEnginesOwnError) {
  LockedDatabases locked;
  Platform platform = machine.platform;
  platform.projectDatabases = &locked;
  LegacyLink lockedLink(platform);
  AnswerProject();
  try {
    GetProjectProperties(lockedLink, Command("getProjectProperties"));
    FAIL() << "opened";
  } catch (const AutomationError& error) {
    EXPECT_EQ(error.Number(), 0x800A0BE5u);
    EXPECT_EQ(error.Source(), "DAO.Database");
  }
  EXPECT_EQ(RaisedBy([&] { WriteProjectConfig(platform, kFolder, {}); }), 3045);
}

}  // namespace
}  // namespace parvex::test
