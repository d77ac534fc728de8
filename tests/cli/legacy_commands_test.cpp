// Commands that reach the legacy application through its router, its options file and its hand-over files, end to end.

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cstdlib>
#include <nlohmann/json.hpp>
#include <sstream>

#include "seams/xml.h"
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
  EXPECT_EQ(outcome.status, 0) << outcome.err;
  EXPECT_THAT(outcome.out, HasSubstr("<LIST><A/></LIST>"));
  EXPECT_THAT(outcome.out, HasSubstr("<LegacyORLA><returnError>0</returnError><errorMessage/></LegacyORLA>"));
  const std::vector<std::string> lines = machine.Lines("journal");
  ASSERT_EQ(lines.size(), 2u);
  EXPECT_THAT(lines[0], HasSubstr("<COMMAND><NAME>getProjectList</NAME><PARAMETER><NAME>pdsg</NAME><VALUE>KDQ47</VALUE>"
                                  "</PARAMETER></COMMAND>\""));
  EXPECT_THAT(lines[1], HasSubstr("<NAME>projectPath</NAME>"));
}

TEST(RouterCommands, RefusedByTheSubstituteAreTheFailedReply) {
  const CliMachine machine;
  const Outcome outcome = machine.Run({"pull", machine.Write("c.xml", CommandText("deleteProject"))});
  EXPECT_EQ(outcome.status, 1);
  EXPECT_EQ(outcome.out, FailedReply());
}

TEST(RouterCommands, BeyondTheReplayAreAFailedCall) {
  const CliMachine machine;
  const std::string command = machine.Write("c.xml", CommandText("getProjectList"));
  const Outcome outcome = machine.Run({"--replay", machine.Write("replay.jsonl", ""), "pull", command});
  EXPECT_EQ(outcome.status, 3);
  EXPECT_EQ(outcome.out, "");
  EXPECT_THAT(outcome.err, HasSubstr("getProjectList"));
}

TEST(Options, AreReadChangedAndReadAgainInOneProcess) {
  const CliMachine machine;
  WriteHostFile(
      machine.Installed("Bin", "Options.xml"),
      "<Options><Tool ID=\"SOV02\"><Option><Name>cmbLanguage</Name><Value>English</Value></Option></Tool></Options>");
  const std::string get = machine.Write("get.xml", CommandText("getOptions"));
  const std::string set = machine.Write("set.xml", CommandText("setOptions", {{"cmbLanguage", "Deutsch"}}));
  const Outcome outcome = machine.Run({"pull", get, set, get});
  EXPECT_EQ(outcome.status, 0) << outcome.err;
  EXPECT_LT(outcome.out.find("English"), outcome.out.find("Deutsch"));
  EXPECT_THAT(ReadHostFile(machine.Installed("Bin", "Options.xml")), HasSubstr("<Value>Deutsch</Value>"));
}

TEST(Options, ThatCannotBeStoredAreTheFailedReply) {
  const CliMachine machine;
  const Outcome outcome = machine.Run({"pull", machine.Write("c.xml", CommandText("setOptions"))});
  EXPECT_EQ(outcome.status, 1);
  EXPECT_EQ(outcome.out, FailedReply());
}

class RoundTrip : public testing::Test {
 protected:
  void SetUp() override { ASSERT_EQ(RunParvex({"machine", "create", machine_}).status, 0); }

  /// The document of all tags of the sample project.
  xml::Document Export() const {
    const Outcome exported =
        RunParvex({"--machine", machine_, "pull-ngorla", machine_ + "/commands/getHybrisXMLNoUI.xml"});
    EXPECT_EQ(exported.status, 0) << exported.err;
    return xml::Document::Parse(exported.out);
  }

  /// Sends a document back of which only this tag is left.
  Outcome SendBack(const xml::Document& document, const std::string& markFor) const {
    const xml::Document one = xml::Document::Parse(document.Xml());
    for (const xml::Node& tag : one.All("/PROJECT/TAGS/TAG")) {
      if (tag.Descendant("MARKFOR").Text() != markFor) {
        tag.Remove();
      }
    }
    const std::string command = (folder_.Path() / "return.xml").string();
    WriteHostFile(command, "<COMMAND><NAME>RebuildTag</NAME><PARAMETERS><PARAMETER>" + one.Root().Xml() +
                               "</PARAMETER></PARAMETERS></COMMAND>");
    return RunParvex(
        {"--machine", machine_, "--journal", (folder_.Path() / "journal").string(), "pull-ngorla", command});
  }

  std::string Read(const std::string& path) const { return ReadHostFile(std::filesystem::path(Root()) / path); }
  std::string Root() const { return machine_ + "/drive_c/Korvane/TQ5-VX"; }

  TemporaryFolder folder_;
  const std::string machine_ = (folder_.Path() / "sample").string();
};

TEST_F(RoundTrip, AnExportedTagSentBackLeavesTheOriginalBlob) {
  const xml::Document document = Export();
  // An export consumes the blobs of the temporary folder; the same selection, made again, has the same bytes.
  ASSERT_EQ(std::system(("'" + Root() + "/Bin/kdwfm470.exe' /OrlaProjectImport").c_str()), 0);
  const std::pair<const char*, const char*> blobs[] = {{"RTU-1", "Temp/tag1101.blb"},
                                                       {"AHU-3", "Projects/Riverside Clinic/tag1102.blb"},
                                                       {"CH-1", "Projects/Riverside Clinic/tag1103.blb"},
                                                       {"SS-2", "Temp/tag1105.blb"},
                                                       {"Küche & Café <EG>", "Temp/tag1106.blb"}};
  for (const auto& [markFor, blob] : blobs) {
    const Outcome returned = SendBack(document, markFor);
    EXPECT_EQ(returned.status, 0) << markFor << returned.err;
    EXPECT_THAT(returned.out, HasSubstr("<errorMessage>No error</errorMessage>")) << markFor;
    ASSERT_NE(Read(blob), "") << blob;
    EXPECT_TRUE(Read("Temp/QPblob.tmp") == Read(blob)) << markFor;
    EXPECT_EQ(Read("Temp/input.ini"),
              "[Header]\r\nAction=ok\r\n[Partnumber1]\r\nfilename=C:\\Korvane\\TQ5-VX\\Temp\\QPblob.tmp\r\n");
  }
}

TEST_F(RoundTrip, EveryComponentIsShownOnceForEveryBaseUnitOnStandardErrorAndInTheJournal) {
  const xml::Document document = Export();
  const std::string inTag = "/PROJECT/TAGS/TAG[ATTRIBUTES_LIST/MARKFOR='RTU-1']/BASEUNITS/BASEUNIT";
  const std::size_t units = document.All(inTag).size();
  ASSERT_EQ(units, 3u);
  std::vector<std::string> expected;
  for (std::size_t unit = 0; unit < units; ++unit) {
    for (const xml::Node& component : document.All(inTag + "/COMPONENTS/COMPONENT")) {
      expected.push_back(component.Xml());
    }
  }
  const Outcome returned = SendBack(document, "RTU-1");
  std::vector<std::string> journalled;
  std::istringstream journal(ReadHostFile(folder_.Path() / "journal"));
  for (std::string line; std::getline(journal, line);) {
    const nlohmann::json entry = nlohmann::json::parse(line);
    EXPECT_EQ(entry.at("kind"), "messageBox");
    journalled.push_back(entry.at("text"));
  }
  EXPECT_EQ(journalled, expected);
  std::size_t at = 0;
  for (const std::string& text : expected) {
    at = returned.err.find(text, at);
    ASSERT_NE(at, std::string::npos) << text;
    at += text.size();
  }
}

TEST_F(RoundTrip, ATagWithoutStoredDataHasAnEmptyBlobAndLeavesAnEmptySelection) {
  EXPECT_THAT(SendBack(Export(), "HP-7").out, HasSubstr("No error"));
  EXPECT_TRUE(std::filesystem::exists(Root() + "/Temp/QPblob.tmp"));
  EXPECT_EQ(Read("Temp/QPblob.tmp"), "");
}

TEST_F(RoundTrip, ATagThatCannotComeBackIsTheFailedReplyWithItsOwnMessage) {
  const xml::Document document = Export();
  document.First("/PROJECT/TAGS/TAG[ATTRIBUTES_LIST/MARKFOR='CH-1']/ATTRIBUTES_LIST/BLOB").Remove();
  const Outcome returned = SendBack(document, "CH-1");
  EXPECT_EQ(returned.status, 1);
  EXPECT_EQ(FailedReply("Tag document BLOB is missing"), returned.out);
  EXPECT_THAT(returned.err, HasSubstr("Returning Applied Chiller Tags to ORLA is not supported."));
  EXPECT_FALSE(std::filesystem::exists(Root() + "/Temp/QPblob.tmp"));
}

}  // namespace
}  // namespace parvex::test
