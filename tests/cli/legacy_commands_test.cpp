// Commands that reach the legacy application through its router, its options file and its hand-over files, end to end.

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "platform/xml.h"
#include "tests/cli/program.h"

namespace parvex::test {
namespace {

using testing::ElementsAre;
using testing::HasSubstr;

TEST(RouterCommands, AreAnsweredFromAReplayAndJournalledWithTheirExactText) {
  const CliMachine machine;
  const std::string replay = machine.Write("replay.jsonl",
                                           "{\"kind\":\"router\",\"answer\":\"<LIST><A/></LIST>\",\"success\":true}\n"
                                           "{\"kind\":\"router\",\"answer\":\"\",\"success\":true}\n");
  const std::string list = machine.Write("list.xml", CommandText("getProjectList"));
  const std::string add = machine.Write("add.xml", CommandText("addProject", {{"projectName", "Clinic"}}));
  const Outcome outcome = machine.Run({"--journal", machine.Path("journal"), "--replay", replay, "pull", list, add});
  EXPECT_EQ(0, outcome.status) << outcome.err;
  EXPECT_THAT(outcome.out, HasSubstr("<LIST><A/></LIST>"));
  EXPECT_THAT(outcome.out, HasSubstr("<LegacyORLA><returnError>0</returnError><errorMessage/></LegacyORLA>"));
  const std::vector<std::string> lines = machine.Lines("journal");
  ASSERT_EQ(2u, lines.size());
  EXPECT_THAT(lines[0], HasSubstr("<COMMAND><NAME>getProjectList</NAME><PARAMETER><NAME>pdsg</NAME><VALUE>KDQ47</VALUE>"
                                  "</PARAMETER></COMMAND>\""));
  EXPECT_THAT(lines[1], HasSubstr("<NAME>projectPath</NAME>"));
}

TEST(RouterCommands, RefusedByTheSubstituteAreTheFailedReply) {
  const CliMachine machine;
  const Outcome outcome = machine.Run({"pull", machine.Write("c.xml", CommandText("deleteProject"))});
  EXPECT_EQ(1, outcome.status);
  EXPECT_EQ(FailedReply(), outcome.out);
}

TEST(RouterCommands, BeyondTheReplayAreAFailedCall) {
  const CliMachine machine;
  const std::string command = machine.Write("c.xml", CommandText("getProjectList"));
  const Outcome outcome = machine.Run({"--replay", machine.Write("replay.jsonl", ""), "pull", command});
  EXPECT_EQ(3, outcome.status);
  EXPECT_EQ("", outcome.out);
  EXPECT_THAT(outcome.err, HasSubstr("getProjectList"));
}

TEST(Options, AreReadChangedAndReadAgainInOneProcess) {
  const CliMachine machine;
  WriteHostFile(machine.Installed("Bin", "Options.xml"),
                "<Options><Tool ID=\"SOV02\"><Option><Name>cmbLanguage</Name><Value>English</Value></Option></Tool></Options>");
  const std::string get = machine.Write("get.xml", CommandText("getOptions"));
  const std::string set =
      machine.Write("set.xml", CommandText("setOptions", {{"cmbLanguage", "Deutsch"}}));
  const Outcome outcome = machine.Run({"pull", get, set, get});
  EXPECT_EQ(0, outcome.status) << outcome.err;
  EXPECT_LT(outcome.out.find("English"), outcome.out.find("Deutsch"));
  EXPECT_THAT(ReadHostFile(machine.Installed("Bin", "Options.xml")), HasSubstr("<Value>Deutsch</Value>"));
}

TEST(Options, ThatCannotBeStoredAreTheFailedReply) {
  const CliMachine machine;
  const Outcome outcome = machine.Run({"pull", machine.Write("c.xml", CommandText("setOptions"))});
  EXPECT_EQ(1, outcome.status);
  EXPECT_EQ(FailedReply(), outcome.out);
}

TEST(RoundTrip, AnExportedTagSentBackLeavesTheOriginalBlob) {
  const TemporaryFolder folder;
  const std::string sample = (folder.Path() / "sample").string();
  ASSERT_EQ(0, RunParvex({"machine", "create", sample}).status);
  const Outcome exported =
      RunParvex({"--machine", sample, "pull-ngorla", sample + "/commands/getHybrisXMLNoUI.xml"});
  ASSERT_EQ(0, exported.status) << exported.err;

  // The chiller's archive lies in the project folder, where an export leaves it.
  const xml::Document document = xml::Document::Parse(exported.out);
  const xml::Node tags = document.First("PROJECT/TAGS");
  std::vector<xml::Node> others;
  for (xml::Node tag = tags.Child("TAG"); tag; tag = tag.Next("TAG")) {
    if (tag.Descendant("MARKFOR").Text() != "CH-1") {
      others.push_back(tag);
    }
  }
  for (const xml::Node& tag : others) {
    tag.Remove();
  }
  const std::string command = (folder.Path() / "return.xml").string();
  WriteHostFile(command, "<COMMAND><NAME>RebuildTag</NAME><PARAMETERS><PARAMETER>" + document.Root().Xml() +
                             "</PARAMETER></PARAMETERS></COMMAND>");
  const Outcome returned = RunParvex({"--machine", sample, "pull-ngorla", command});
  EXPECT_EQ(0, returned.status) << returned.err;
  EXPECT_THAT(returned.out, HasSubstr("<errorMessage>No error</errorMessage>"));

  const std::filesystem::path root = std::filesystem::path(sample) / "drive_c/Korvane/TQ5-VX";
  std::vector<std::string> blobs;
  for (const auto& entry : std::filesystem::directory_iterator(root / "Projects/Riverside Clinic")) {
    if (entry.path().extension() != ".json" && entry.path().extension() != ".mdb") {
      blobs.push_back(ReadHostFile(entry.path()));
    }
  }
  EXPECT_THAT(blobs, testing::Contains(ReadHostFile(root / "Temp/QPblob.tmp")));
  EXPECT_EQ("[Header]\r\nAction=ok\r\n[Partnumber1]\r\nfilename=C:\\Korvane\\TQ5-VX\\Temp\\QPblob.tmp\r\n",
            ReadHostFile(root / "Temp/input.ini"));
}

}  // namespace
}  // namespace parvex::test
