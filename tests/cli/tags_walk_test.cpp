// Tags of the sample machine, end to end through the program, the substitute's router and its builder.

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <sstream>

#include "legacy_standin/installation/json_members.h"
#include "seams/xml.h"
#include "tests/cli/program.h"
#include "tests/support/command_texts.h"

namespace parvex::test {
namespace {

using standin::Json;
using testing::ElementsAre;
using testing::ElementsAreArray;
using testing::HasSubstr;

namespace fs = std::filesystem;

const std::string kBuilder = "KDQU470.CKDBuilder";
const std::string kClinicParameter = Parameter("projectName", "Riverside Clinic");

class TagsWalk : public testing::Test {
 protected:
  TagsWalk() { EXPECT_EQ(RunParvex({"machine", "create", Sample()}).status, 0); }

  std::string Sample() const { return (folder_.Path() / "sample").string(); }
  fs::path Bin(const std::string& name) const { return fs::path(Sample()) / "drive_c/Korvane/TQ5-VX/Bin" / name; }
  void SetStandin(const std::string& json) const { WriteHostFile(fs::path(Sample()) / "standin.json", json); }

  /// Writes a command document and gives its path.
  std::string File(const std::string& name, const std::string& parameters) {
    const fs::path path = folder_.Path() / (std::to_string(++files_) + ".xml");
    WriteHostFile(path, "<COMMAND><NAME>" + name + "</NAME>" + parameters + "</COMMAND>");
    return path.string();
  }

  Outcome Pull(const std::vector<std::string>& files, const std::vector<std::string>& options = {}) const {
    std::vector<std::string> arguments = {"--machine", Sample(), "--journal", Journal()};
    arguments.insert(arguments.end(), options.begin(), options.end());
    arguments.push_back("pull");
    arguments.insert(arguments.end(), files.begin(), files.end());
    return RunParvex(arguments);
  }
  Outcome Send(const std::string& name, const std::string& parameters) { return Pull({File(name, parameters)}); }

  /// The tags of a project as getTagList answers them: name, a blank, UPTODATE.
  std::vector<std::string> Tags(const std::string& project = kClinicParameter) {
    const Outcome outcome = Send("getTagList", project);
    EXPECT_EQ(outcome.status, 0) << outcome.err;
    std::vector<std::string> tags;
    for (const xml::Node& tag : xml::Document::Parse(outcome.out).All("/TAGLIST/TAG")) {
      tags.push_back(tag.Child("NAME").Text() + " " + tag.Child("UPTODATE").Text());
    }
    return tags;
  }

  std::vector<Json> Journalled(const std::string& kind) const {
    std::vector<Json> found;
    std::istringstream text(ReadHostFile(Journal()));
    for (std::string line; std::getline(text, line);) {
      Json json = Json::parse(line);
      if (json["kind"] == kind) {
        found.push_back(std::move(json));
      }
    }
    return found;
  }

  std::vector<std::string> Requests() const {
    std::vector<std::string> requests;
    for (const Json& line : Journalled("router")) {
      requests.push_back(line["request"].get<std::string>());
    }
    return requests;
  }

  std::string Journal() const { return (folder_.Path() / "journal").string(); }

 private:
  TemporaryFolder folder_;
  int files_ = 0;
};

std::string Owned(const std::string& tagName) {
  return kClinicParameter + Parameter("pdsg", "RTU47") + Parameter("tagName", tagName);
}

TEST_F(TagsWalk, TheListSaysWhichTagsAreUpToDate) {
  EXPECT_THAT(Tags(), ElementsAre("RTU-1 -1", "AHU-3 -1", "CH-1 -1", "HP-7 0", "SS-2 0", "Küche & Café <EG> 0"));
  EXPECT_THAT(Requests(), ElementsAre(Sent("getTagList", Parameter("pdsg", "KDQ47") + Parameter("pdsgFilter", "*") +
                                                             kClinicParameter)));
}

TEST_F(TagsWalk, WithoutAToolFileNoTagWithAVersionIsUpToDate) {
  fs::remove(Bin("Tools.xml"));
  EXPECT_THAT(Tags(), ElementsAre("RTU-1 0", "AHU-3 0", "CH-1 0", "HP-7 -1", "SS-2 -1", "Küche & Café <EG> 0"));
}

TEST_F(TagsWalk, AnUnknownProjectIsTheFailedReply) {
  const Outcome outcome = Send("getTagList", Parameter("projectName", "Nowhere"));
  EXPECT_EQ(outcome.status, 1);
  EXPECT_EQ(outcome.out, kFailure);
}

TEST_F(TagsWalk, TheListsTagsAreFetchedByOneRequestEach) {
  const Outcome list = Send("getTagList", kClinicParameter);
  const xml::Document tags = xml::Document::Parse(list.out);
  const Outcome outcome = Send("getTags", kClinicParameter + Parameter("data", tags.Root().Xml()));
  EXPECT_EQ(outcome.status, 0) << outcome.err;
  const xml::Document data = xml::Document::Parse(outcome.out);
  std::vector<std::string> found;
  for (xml::Node node = data.First("/TagData/PROJECT/projectName"); node; node = node.NextSibling()) {
    const xml::Node name = node.Child("TagName");
    found.push_back(node.Name() + " " + (name ? name.Text() : node.Text()));
  }
  EXPECT_THAT(found, ElementsAre("projectName Riverside Clinic", "TAG RTU-1", "TAG AHU-3", "TAG CH-1", "PROTOTAG HP-7",
                                 "PROTOTAG SS-2", "TAG Küche & Café <EG>"));
  const std::vector<std::string> requests = Requests();
  ASSERT_EQ(requests.size(), 6u);
  EXPECT_EQ(Sent("getTag", Parameter("pdsgFilter", "") + kClinicParameter + Parameter("pdsg", "RTU47") +
                               Parameter("tagName", "RTU-1")),
            requests[0]);
  EXPECT_EQ(Sent("getTagEx", kClinicParameter + Parameter("pdsg", "KDQ47") + Parameter("pdsgFilter", "WSH47") +
                                 Parameter("tagName", "HP-7")),
            requests[3]);
}

TEST_F(TagsWalk, ATagTheProjectDoesNotHaveIsLeftOut) {
  const std::string entry = "<TAG><NAME>No</NAME><PDSG>RTU47</PDSG><DATATYPE>0</DATATYPE></TAG>";
  const Outcome outcome = Send("getTags", kClinicParameter + Parameter("data", entry));
  EXPECT_EQ(outcome.status, 0);
  EXPECT_EQ(outcome.out, "<TagData><PROJECT><projectName>Riverside Clinic</projectName></PROJECT></TagData>\r\n");
}

TEST_F(TagsWalk, ATagIsRenamedCopiedAndDeleted) {
  const std::string copying = kClinicParameter + Parameter("PDSG", "RTU47") + Parameter("tagName", "Roof _ 1") +
                              Parameter("dataType", "0") + Parameter("TAGINDEXID", "1101");
  const Outcome outcome = Pull({
      File("renameTag", Owned("RTU-1") + Parameter("newTagName", "Roof | 1")),
      File("copyTag", copying),
      File("addProject", Parameter("projectName", "Annex")),
      File("copyTag", copying + Parameter("destinationProject", "Annex") + Parameter("newTagName", "RTU-1")),
      File("deleteTag", kClinicParameter + Parameter("PDSG", "XRC47") + Parameter("tagName", "CH-1") +
                            Parameter("DATATYPE", "0") + Parameter("TAGINDEXID", "1103") + Parameter("ID", "1103")),
  });
  EXPECT_EQ(outcome.status, 0) << outcome.out;
  EXPECT_THAT(Tags(),
              ElementsAre("Roof _ 1 -1", "AHU-3 -1", "HP-7 0", "SS-2 0", "Küche & Café <EG> 0", "Copy of Roof _ 1 -1"));
  EXPECT_THAT(Tags(Parameter("projectName", "Annex")), ElementsAre("RTU-1[1] -1"))
      << "the instance goes by the list that it fetched first, of another project and with the old name";
}

TEST_F(TagsWalk, RequestsToRenameCarryTheUpdateDocument) {
  Send("renameTag", Owned("RTU-1") + Parameter("newTagName", "RTU-1"));
  const std::vector<std::string> requests = Requests();
  ASSERT_EQ(requests.size(), 2u);
  const std::string info =
      "<TagUpdateInfo><Table Name=\"TagData\"><Column>sTagName</Column><Column>sDescription</Column></Table>"
      "<Table Name=\"TagIndex\"><Column>sTagName</Column></Table></TagUpdateInfo>";
  EXPECT_EQ(Sent("renameTagEx", kClinicParameter + Parameter("pdsg", "KDQ47") + Parameter("tagName", "RTU-1") +
                                    Parameter("newTagName", "RTU-1[1]") + Parameter("pdsgOfOwner", "RTU47") +
                                    Parameter("tableName", "TagData") + Parameter("data", info)),
            requests[1]);
}

TEST_F(TagsWalk, WhatTheRouterRefusesIsTheFailedReply) {
  SetStandin("{\"router\":{\"refuse\":[\"renameTagEx\",\"CopyTagEx\",\"deleteTagEx\"]}}");
  EXPECT_EQ(Send("renameTag", Owned("RTU-1") + Parameter("newTagName", "N")).status, 1);
  EXPECT_EQ(Send("copyTag", kClinicParameter + Parameter("PDSG", "RTU47") + Parameter("tagName", "RTU-1")).status, 1);
  EXPECT_EQ(Send("deleteTag", kClinicParameter + Parameter("PDSG", "RTU47") + Parameter("tagName", "RTU-1")).status, 1);
  EXPECT_THAT(Tags(), testing::SizeIs(6));
}

TEST_F(TagsWalk, AReplayAnswersTagRequests) {
  const std::string replay = File("not a command", "");
  WriteHostFile(replay,
                "{\"kind\":\"router\",\"answer\":\"<L><TAG><NAME>A</NAME><PDSG>XRC47</PDSG>"
                "<TAGVERSION>4.71.0</TAGVERSION></TAG></L>\",\"success\":true}\n"
                "{\"kind\":\"router\",\"answer\":\"no XML\",\"success\":true}\n");
  const std::string list = File("getTagList", kClinicParameter);
  const Outcome outcome = Pull({list, list}, {"--replay", replay});
  EXPECT_EQ(outcome.status, 0) << outcome.err;
  EXPECT_EQ(outcome.out,
            "<L><TAG><NAME>A</NAME><PDSG>XRC47</PDSG><TAGVERSION>4.71.0</TAGVERSION><UPTODATE>-1</UPTODATE></TAG>"
            "</L>\r\n");
}

TEST_F(TagsWalk, TheSamplesCommandsAreAllCarriedOutInTheirOrder) {
  std::vector<std::string> commands;
  for (const auto& entry : fs::directory_iterator(fs::path(Sample()) / "commands")) {
    if (entry.path().filename().string().starts_with("tag-")) {
      commands.push_back(entry.path().string());
    }
  }
  std::sort(commands.begin(), commands.end());
  EXPECT_THAT(commands, testing::SizeIs(8));
  for (const std::string& command : commands) {
    const Outcome outcome = Pull({command});
    EXPECT_EQ(outcome.status, 0) << command << outcome.err;
  }
  EXPECT_THAT(Tags(), ElementsAre("Roof _ 1 -1", "AHU-3 -1", "CH-1 -1", "HP-7 0", "SS-2 0", "Küche & Café <EG> -1",
                                  "New RTU-1107 -1"));
}

const std::string kNewTag = kClinicParameter + Parameter("PDSG", "RTU47");
const std::string kConfigureTag = kClinicParameter + Parameter("PDSG", "FCB47") +
                                  Parameter("tagName", "Küche &amp; Café &lt;EG&gt;") + Parameter("tagID", "1106") +
                                  Parameter("projectID", "1");

TEST_F(TagsWalk, TheBuilderMakesATagThatIsExportedWithTheOthers) {
  EXPECT_EQ(Send("newTag", kNewTag).status, 0);
  EXPECT_EQ(Tags().back(), "New RTU-1107 -1");
  const Outcome exported =
      RunParvex({"--machine", Sample(), "pull-ngorla", Sample() + "/commands/getHybrisXMLNoUI.xml"});
  EXPECT_THAT(exported.out, HasSubstr("<MARKFOR>New RTU-1107</MARKFOR>"));
}

TEST_F(TagsWalk, TheBuilderBringsAConfiguredTagAndARebuiltProjectUpToDate) {
  EXPECT_EQ(Send("configureTag", kConfigureTag).status, 0);
  EXPECT_EQ(Tags().back(), "Küche & Café <EG> -1");
  WriteHostFile(Bin("Tools.xml"), "<Tools><Tool><Pdsg>RTU47</Pdsg><Version>5</Version></Tool></Tools>");
  EXPECT_EQ(Tags().front(), "RTU-1 0");
  EXPECT_EQ(Send("rebuildAllTags", kClinicParameter).status, 0);
  EXPECT_EQ(Tags().front(), "RTU-1 -1");
}

TEST_F(TagsWalk, ConfiguringSwitchesTheBuildersSettingsBackOn) {
  WriteHostFile(Bin("UIKeys.txt"), "ToolBarActive=5\r\n");
  EXPECT_EQ(Send("configureTag", kConfigureTag).status, 0);
  EXPECT_EQ(ReadHostFile(Bin("UIKeys.txt")), "ToolBarActive=-1\r\n");
}

TEST_F(TagsWalk, TheJournalHoldsEveryStepWithTheBuilder) {
  SetStandin("{\"builder\":{\"polls\":1}}");
  ASSERT_EQ(Send("configureTag", kConfigureTag).status, 0);
  std::vector<std::string> steps;
  for (const Json& line : Journalled("automation")) {
    steps.push_back(line["op"].get<std::string>() + " " + line["object"].get<std::string>() + " " +
                    line["member"].get<std::string>() + " " + line["args"].dump() + " " + line["result"].dump());
  }
  const std::string framework = kBuilder + ".Framework";
  const std::string broker = framework + ".ServiceBroker";
  const auto object = [](const std::string& name) { return "{\"object\":\"" + name + "\"}"; };
  const std::string arguments =
      "[\"Workflow Service\",\"runBuilder\",[[\"Consumer\"," + object("Parvex.LegacyORLAPull") + "],[\"Builder\"," +
      object(kBuilder) + "],[\"Command Line\"," + R"("\\\\\\FCB47\\Küche & Café <EG>\\1106\\Riverside Clinic\\1")" +
      "]],\"QuoteBuilder\"]";
  EXPECT_THAT(steps,
              ElementsAreArray(
                  {"create " + kBuilder + "  [] null", "put " + kBuilder + " standalone [false] null",
                   "call " + kBuilder + " View [true,null] null", "get " + kBuilder + " UILoaded [] false",
                   "get " + kBuilder + " UILoaded [] true", "get " + kBuilder + " Framework [] " + object(framework),
                   "get " + framework + " ServiceBroker [] " + object(broker), "release " + framework + "  [] null",
                   "call " + broker + " CallService " + arguments + " " + object(broker + ".CallService"),
                   "release " + broker + "  [] null", "get " + kBuilder + " UILoaded [] true",
                   "release " + kBuilder + "  [] null", "release " + broker + ".CallService  [] null"}));
}

TEST_F(TagsWalk, ACancelledBuilderIsASuccessThatChangesNothing) {
  SetStandin("{\"builder\":{\"cancelled\":true,\"polls\":0}}");
  const std::vector<std::string> before = Tags();
  EXPECT_EQ(Send("newTag", kNewTag).out, kSuccess);
  EXPECT_EQ(Send("configureTag", kConfigureTag).out, kSuccess);
  EXPECT_EQ(Send("rebuildAllTags", kClinicParameter).out, kSuccess);
  EXPECT_EQ(before, Tags());
}

TEST_F(TagsWalk, AMissingBuilderEndsTheCall) {
  SetStandin("{\"builder\":{\"missing\":true}}");
  for (const char* name : {"newTag", "configureTag", "rebuildAllTags"}) {
    const Outcome outcome = Send(name, kConfigureTag);
    EXPECT_EQ(outcome.status, 3) << name;
    EXPECT_EQ(outcome.out, "") << name;
    EXPECT_THAT(outcome.err, HasSubstr("0x800A01AD")) << name;
  }
}

TEST_F(TagsWalk, ABuilderThatFailsEndsTheCallOrIsAnsweredAsTheMemberSays) {
  const auto failing = [&](const std::string& member, const char* name) {
    SetStandin("{\"builder\":{\"polls\":0,\"failAt\":\"" + member + "\"}}");
    return Send(name, kConfigureTag);
  };
  for (const char* member : {"standalone", "View", "UILoaded", "Framework", "ServiceBroker", "CallService"}) {
    const Outcome made = failing(member, "newTag");
    EXPECT_EQ(made.status, 3) << member;
    EXPECT_THAT(made.err, HasSubstr(std::string(".") + member + ": told to fail"));
    EXPECT_EQ(failing(member, "rebuildAllTags").status, 3) << member;
    const bool isBeforeTheWait = std::string(member) == "standalone" || std::string(member) == "View";
    EXPECT_EQ(isBeforeTheWait ? 3 : 1, failing(member, "configureTag").status) << member;
  }
  EXPECT_EQ(failing("Shutdown", "rebuildAllTags").status, 3);
  EXPECT_EQ(failing("Shutdown", "configureTag").status, 0) << "only rebuildAllTags shuts its builder down";
}

TEST_F(TagsWalk, ABuilderThatLoadsSlowlyIsWaitedFor) {
  SetStandin("{\"builder\":{\"polls\":6}}");
  EXPECT_EQ(Send("newTag", kNewTag).out, kSuccess);
  EXPECT_EQ(Tags().back(), "New RTU-1107 -1");
}

}  // namespace
}  // namespace parvex::test
