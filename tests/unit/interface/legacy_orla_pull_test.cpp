#include "interface/legacy_orla_pull.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "interface/command_table.h"
#include "protocol/reply_envelope.h"
#include "seams/automation_error.h"
#include "tests/support/fake_platform.h"

namespace parvex {
namespace {

std::string CommandText(std::string_view name) { return "<COMMAND><NAME>" + std::string(name) + "</NAME></COMMAND>"; }

class LegacyOrlaPullTest : public testing::Test {
 protected:
  xml::Document Pull(std::string_view name) { return pull_.Pull(xml::Document::Parse(CommandText(name))); }

  test::FakeMachine machine_;
  LegacyORLAPull pull_{machine_.platform};
  const std::string failedReply_ = MakeFailedReply().Xml();
};

std::vector<std::string_view> Names(std::span<const CommandEntry> commands) {
  std::vector<std::string_view> names;
  for (const CommandEntry& command : commands) {
    names.push_back(command.name);
  }
  return names;
}

TEST(CommandTables, HoldTheCommandsOfEachEntryPointInOrder) {
  const std::vector<std::string_view> pull = {"getProjectList",
                                              "archiveProject",
                                              "retrieveProject",
                                              "addProject",
                                              "deleteProject",
                                              "copyProject",
                                              "getProjectProperties",
                                              "setProjectProperties",
                                              "renameProject",
                                              "rebuildAllTags",
                                              "getTagList",
                                              "getTags",
                                              "renameTag",
                                              "deleteTag",
                                              "newTag",
                                              "copyTag",
                                              "configureTag",
                                              "getHybrisXML",
                                              "getReport",
                                              "getReports",
                                              "getSubmittal",
                                              "getAvailableReports",
                                              "getOptions",
                                              "setOptions"};
  EXPECT_EQ(pull, Names(PullCommands()));
  const std::vector<std::string_view> ngorla = {"getHybrisXML", "getHybrisXMLNoUI", "RebuildTag"};
  EXPECT_EQ(ngorla, Names(PullNgorlaCommands()));
}

TEST(CommandTables, GiveEachCommandAHandlerAndASummaryOfOneLine) {
  for (const auto table : {PullCommands(), PullNgorlaCommands()}) {
    for (const CommandEntry& command : table) {
      EXPECT_NE(command.handler, nullptr) << command.name;
      EXPECT_FALSE(command.summary.empty()) << command.name;
      EXPECT_EQ(command.summary.find('\n'), std::string_view::npos) << command.name;
    }
  }
}

TEST(CommandTables, ServeTheSameExportInBothEntryPoints) {
  EXPECT_EQ(PullCommands()[17].handler, PullNgorlaCommands()[0].handler);
}

TEST(LegacyOrlaPullConstruction, FailsWhenTheRouterCannotBeCreated) {
  test::FakeMachine machine;
  machine.routers.missing = true;
  try {
    LegacyORLAPull pull(machine.platform);
    FAIL() << "no error";
  } catch (const AutomationError& error) {
    EXPECT_EQ(error.Number(), 0x800A01ADu);
  }
}

TEST_F(LegacyOrlaPullTest, PullAnswersUnknownNamesWithTheFailedReply) {
  for (const char* name : {"nonsense", "", "getProjectListX", "getProject"}) {
    EXPECT_EQ(Pull(name).Xml(), failedReply_) << name;
  }
}

TEST_F(LegacyOrlaPullTest, PullComparesNamesWithLetterCase) {
  for (const char* name : {"GetProjectList", "getprojectlist", "GETHYBRISXML", "gethybrisxml"}) {
    EXPECT_EQ(Pull(name).Xml(), failedReply_) << name;
  }
  EXPECT_TRUE(machine_.processes.started.empty());
}

TEST_F(LegacyOrlaPullTest, PullDoesNotServeTheCommandsOfPullNgorla) {
  EXPECT_EQ(Pull("getHybrisXMLNoUI").Xml(), failedReply_);
  EXPECT_EQ(Pull("RebuildTag").Xml(), failedReply_);
  EXPECT_TRUE(machine_.processes.started.empty());
}

TEST_F(LegacyOrlaPullTest, PullNgorlaDoesNotServeTheCommandsOfPull) {
  for (const CommandEntry& command : PullCommands()) {
    if (command.name != "getHybrisXML") {
      EXPECT_EQ(pull_.PullNGORLA(CommandText(command.name)), failedReply_) << command.name;
    }
  }
  EXPECT_TRUE(machine_.routers.requests.empty());
}

TEST_F(LegacyOrlaPullTest, PullNgorlaComparesNamesWithLetterCase) {
  for (const char* name : {"rebuildTag", "getHybrisXMLNoUi", "GetHybrisXML"}) {
    EXPECT_EQ(pull_.PullNGORLA(CommandText(name)), failedReply_) << name;
  }
  EXPECT_TRUE(machine_.processes.started.empty());
}

TEST_F(LegacyOrlaPullTest, AReplyInPiecesIsTheSameAndIsToldToBeTheFailedOne) {
  std::string reply;
  const auto take = [&](std::string_view piece) { reply += piece; };
  EXPECT_TRUE(pull_.PullNGORLA(CommandText("nonsense"), take));
  EXPECT_EQ(reply, failedReply_);

  machine_.processes.work = [this](const std::string&) {
    machine_.Write("C:\\Korvane\\TQ5-VX\\Temp\\QBOutput.ini", "[Header]\r\nAction=OK\r\n");
  };
  const std::string command =
      "<COMMAND><NAME>getHybrisXMLNoUI</NAME><PARAMETER><NAME>selection</NAME><VALUE><UserSelectionTransfer>"
      "<ProjectName>Clinic</ProjectName></UserSelectionTransfer></VALUE></PARAMETER></COMMAND>";
  const std::string whole = pull_.PullNGORLA(command);
  reply.clear();
  EXPECT_FALSE(pull_.PullNGORLA(command, take));
  EXPECT_EQ(reply, whole);
  EXPECT_THAT(whole, testing::HasSubstr("Clinic"));
  EXPECT_THROW(pull_.PullNGORLA("", take), AutomationError);
}

TEST_F(LegacyOrlaPullTest, DispatchesACommandNestedUnderAnotherRoot) {
  machine_.SetBinPath("");
  const std::string reply = pull_.PullNGORLA("<A><B>" + CommandText("getHybrisXMLNoUI") + "</B></A>");
  EXPECT_EQ(MakeFailedReply("System Error: Unable to read BinPath").Xml(), reply);
}

TEST_F(LegacyOrlaPullTest, BothEntryPointsServeTheInteractiveExport) {
  machine_.SetBinPath("");
  const std::string unreadable = MakeFailedReply("System Error: Unable to read BinPath").Xml();
  EXPECT_EQ(Pull("getHybrisXML").Xml(), unreadable);
  EXPECT_EQ(pull_.PullNGORLA(CommandText("getHybrisXML")), unreadable);
}

TEST_F(LegacyOrlaPullTest, ACommandWithoutNameIsAFailedCall) {
  for (const char* text : {"", "no xml", "<COMMAND>", "<COMMAND/>", "<command><NAME>getOptions</NAME></command>"}) {
    EXPECT_THROW(pull_.PullNGORLA(text), AutomationError) << text;
    EXPECT_THROW(pull_.Pull(xml::Document::Parse(text)), AutomationError) << text;
  }
  EXPECT_THROW(pull_.Pull(xml::Document()), AutomationError);
}

TEST_F(LegacyOrlaPullTest, IsUsableAfterAFailedCall) {
  EXPECT_THROW(pull_.PullNGORLA(""), AutomationError);
  EXPECT_EQ(pull_.PullNGORLA(CommandText("nonsense")), failedReply_);
}

TEST_F(LegacyOrlaPullTest, PullNgorlaIgnoresTheEncodingThatTheTextDeclares) {
  EXPECT_EQ(pull_.PullNGORLA("<?xml version=\"1.0\" encoding=\"UTF-16\"?>" + CommandText("Größe")), failedReply_);
}

}  // namespace
}  // namespace parvex
