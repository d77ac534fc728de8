#include "tags/tag_building.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <chrono>
#include <map>

#include "protocol/legacy_link.h"
#include "seams/automation_error.h"
#include "tests/support/command_texts.h"
#include "tests/support/fake_platform.h"
#include "tests/support/raised_by.h"

namespace parvex {
namespace {

using std::chrono_literals::operator""ms;
using test::Command;
using test::Parameter;
using testing::Contains;
using testing::ElementsAreArray;

const std::string kBuilder = "KDQU470.CKDBuilder";
const std::string kBroker = kBuilder + ".Framework.ServiceBroker";
const std::string kUiKeys = "ToolBarActive=1\r\nTreeViewActive=1\r\n";

using Handler = xml::Document (*)(LegacyLink&, const xml::Document&);
using Lines = std::vector<std::string>;

/// A machine with a builder whose window is there at the third look, and an instance that holds an old report server.
struct BuilderMachine {
  test::FakeMachine machine;
  test::FakeAutomation& automation = machine.automation;
  LegacyLink link{machine.platform};

  BuilderMachine() {
    machine.Write(UiKeys(), kUiKeys);
    automation.Offer(kBuilder);
    automation.Answer(kBuilder + ".UILoaded", {false, false, true});
    automation.AnswerObject(kBuilder + ".Framework");
    automation.AnswerObject(kBroker);
    automation.Do(kBroker + ".CallService", [this](auto) { return automation.NewObject("workflow"); });
    link.consumer = automation.NewObject("consumer");
    link.reportServer = automation.NewObject("report server");
  }

  static std::string UiKeys() { return std::string(test::FakeMachine::kBinPath) + "UIKeys.txt"; }
  /// What the tool bar is set to.
  std::string ToolBar() { return machine.Read(UiKeys()).substr(14, machine.Read(UiKeys()).find('\r') - 14); }

  /// The consumer, which the instance holds for its life, is the only object left.
  bool HoldsNothing() const { return !link.builder && !link.reportServer && automation.living == 1; }
};

struct BuilderCommand {
  const char* name;
  Handler handler;
  std::string parameters;
};

const BuilderCommand kNewTag = {"newTag", NewTag,
                                Parameter("projectName", "Clinic") + Parameter("PDSG", "RTU47") +
                                    Parameter("partNumber", "RTUA") + Parameter("tagName", "RTU-1")};
const BuilderCommand kConfigureTag = {"configureTag", ConfigureTag,
                                      Parameter("projectName", "Clinic") + Parameter("PDSG", "RTU47") +
                                          Parameter("tagName", "RTU-1") + Parameter("tagID", "1101") +
                                          Parameter("projectID", "7")};
const BuilderCommand kRebuildAllTags = {"rebuildAllTags", RebuildAllTags, Parameter("projectName", "Clinic")};

std::string Send(BuilderMachine& builder, const BuilderCommand& command) {
  return command.handler(builder.link, Command(command.name, command.parameters)).Xml();
}

/// What every command does up to the broker's call, and with it.
Lines Opening(const std::string& view, const std::string& commandLine) {
  return {"release report server",
          "create " + kBuilder,
          "put " + kBuilder + ".standalone = False",
          "call " + kBuilder + ".View(" + view + ", Nothing)",
          "get " + kBuilder + ".UILoaded -> False",
          "get " + kBuilder + ".UILoaded -> False",
          "get " + kBuilder + ".UILoaded -> True",
          "get " + kBuilder + ".Framework -> " + kBuilder + ".Framework",
          "get " + kBroker + " -> " + kBroker,
          "release " + kBuilder + ".Framework",
          "call " + kBroker + ".CallService(\"Workflow Service\", \"runBuilder\", {Consumer: consumer, Builder: &" +
              kBuilder + ", Command Line: \"" + commandLine + "\"}, \"QuoteBuilder\") -> workflow",
          "release " + kBroker};
}

Lines Joined(Lines lines, const Lines& more) {
  lines.insert(lines.end(), more.begin(), more.end());
  return lines;
}

TEST(NewTag, DrivesTheBuilderMemberByMemberAndLetsGoOfIt) {
  BuilderMachine builder;
  EXPECT_EQ(Send(builder, kNewTag), test::kSuccess);
  EXPECT_THAT(builder.automation.lines, ElementsAreArray(Joined(Opening("False", "\\\\RTU47\\Clinic"),
                                                                {"release " + kBuilder, "release workflow"})));
  EXPECT_TRUE(builder.HoldsNothing());
}

TEST(ConfigureTag, DrivesTheBuilderMemberByMemberAndWaitsForItsWindowAgain) {
  BuilderMachine builder;
  EXPECT_EQ(Send(builder, kConfigureTag), test::kSuccess);
  EXPECT_THAT(
      builder.automation.lines,
      ElementsAreArray(Joined(Opening("True", "\\\\\\RTU47\\RTU-1\\1101\\Clinic\\7"),
                              {"get " + kBuilder + ".UILoaded -> True", "release " + kBuilder, "release workflow"})));
  EXPECT_TRUE(builder.HoldsNothing());
}

TEST(RebuildAllTags, DrivesTheBuilderMemberByMemberAndShutsItDown) {
  BuilderMachine builder;
  EXPECT_EQ(Send(builder, kRebuildAllTags), test::kSuccess);
  EXPECT_THAT(builder.automation.lines,
              ElementsAreArray(Joined(Opening("True", "\\\\:Clinic"), {"call " + kBuilder + ".Shutdown()",
                                                                       "release workflow", "release " + kBuilder})));
  EXPECT_TRUE(builder.HoldsNothing());
}

class BuilderCommands : public testing::TestWithParam<BuilderCommand> {};

INSTANTIATE_TEST_SUITE_P(, BuilderCommands, testing::Values(kNewTag, kConfigureTag, kRebuildAllTags),
                         [](const auto& command) { return command.param.name; });

TEST_P(BuilderCommands, MakeABuilderOfTheirOwnEveryTime) {
  BuilderMachine builder;
  builder.link.builder = builder.automation.NewObject("old builder");
  Send(builder, GetParam());
  Send(builder, GetParam());
  const Lines& lines = builder.automation.lines;
  EXPECT_EQ(std::count(lines.begin(), lines.end(), "create " + kBuilder), 2);
  EXPECT_LT(std::find(lines.begin(), lines.end(), "release old builder"),
            std::find(lines.begin(), lines.end(), "create " + kBuilder));
}

TEST_P(BuilderCommands, ServeWindowMessagesAfterEachObjectIsLetGo) {
  BuilderMachine builder;
  builder.link.builder = builder.automation.NewObject("old builder");
  int pumpedBeforeCreation = 0;
  std::chrono::milliseconds waited{};
  builder.automation.onAccess = [&](const std::string& line) {
    if (line == "create " + kBuilder) {
      pumpedBeforeCreation = builder.machine.pump.pumped;
      waited = builder.machine.pump.now;
    }
  };
  Send(builder, GetParam());
  EXPECT_EQ(pumpedBeforeCreation, 2);
  EXPECT_EQ(waited, 100ms);
}

TEST_P(BuilderCommands, WaitForTheWindowHoweverLongItTakesAndServeMessagesMeanwhile) {
  BuilderMachine builder;
  int polls = 0;
  builder.automation.Do(kBuilder + ".UILoaded", [&](auto) { return automation::Value(++polls > 5000); });
  EXPECT_EQ(Send(builder, GetParam()), test::kSuccess);
  EXPECT_GE(polls, 5001);
  EXPECT_EQ(builder.machine.pump.pumped, 2 + 5000);
  EXPECT_GE(builder.machine.pump.now, 5000 * 200ms);
}

TEST_P(BuilderCommands, TakeNothingAndZeroForNotLoadedAndAnyNumberForLoaded) {
  BuilderMachine builder;
  builder.automation.Answer(kBuilder + ".UILoaded", {automation::Value(), 0, -1});
  EXPECT_EQ(Send(builder, GetParam()), test::kSuccess);
  EXPECT_EQ(builder.machine.pump.pumped, 2 + 2);
}

TEST_P(BuilderCommands, PassOddNamesIntoTheCommandLineUnchanged) {
  BuilderMachine builder;
  const std::string odd = "A\\B & <C> \"D\" Küche";
  const xml::Document command = Command(GetParam().name, Parameter("projectName", "x") + Parameter("PDSG", "G"));
  command.First("//PARAMETER[NAME='projectName']/VALUE").SetText(odd);
  GetParam().handler(builder.link, command);
  const std::map<std::string, std::string> lines = {
      {"newTag", R"(\\G\)" + odd}, {"configureTag", R"(\\\G\\\)" + odd + R"(\)"}, {"rebuildAllTags", R"(\\:)" + odd}};
  EXPECT_THAT(builder.automation.lines,
              Contains(testing::HasSubstr("Command Line: \"" + lines.at(GetParam().name) + "\"}")));
}

TEST_P(BuilderCommands, AnswerSuccessWhateverTheWorkflowGivesBack) {
  const std::vector<automation::Value> results = {{}, false, std::string("cancelled"), automation::ObjectRef()};
  for (const automation::Value& given : results) {
    BuilderMachine builder;
    builder.automation.Answer(kBroker + ".CallService", {given});
    EXPECT_EQ(Send(builder, GetParam()), test::kSuccess);
    EXPECT_TRUE(builder.HoldsNothing());
  }
}

TEST_P(BuilderCommands, WorkForAnInstanceWithoutAConsumer) {
  BuilderMachine builder;
  builder.link.consumer.reset();
  EXPECT_EQ(Send(builder, GetParam()), test::kSuccess);
  EXPECT_THAT(builder.automation.lines, Contains(testing::HasSubstr("{Consumer: Nothing, ")));
}

TEST_P(BuilderCommands, EndTheCallWhenThereIsNoBuilder) {
  BuilderMachine builder;
  builder.automation.failAt = kBuilder;
  builder.automation.failNumber = 0x800A01ADu;
  EXPECT_EQ(test::RaisedBy([&] { Send(builder, GetParam()); }), 429);
  EXPECT_TRUE(builder.HoldsNothing());
}

/// What becomes of a command whose builder fails at a member.
struct Failure {
  std::string member;
  bool configureTagCarriesOn;  ///< answered with the failed reply by configureTag, ends the call otherwise
};

const Failure kFailures[] = {{".standalone", false},
                             {".View", false},
                             {".UILoaded", true},
                             {".Framework", true},
                             {".Framework.ServiceBroker", true},
                             {".Framework.ServiceBroker.CallService", true}};

TEST_P(BuilderCommands, EndTheCallOrAnswerTheFailureAsTheMemberThatFailsSaysAndHoldNothing) {
  for (const Failure& failure : kFailures) {
    BuilderMachine builder;
    builder.automation.failAt = kBuilder + failure.member;
    if (failure.configureTagCarriesOn && GetParam().handler == ConfigureTag) {
      EXPECT_EQ(Send(builder, GetParam()), test::kFailure) << failure.member;
    } else {
      try {
        Send(builder, GetParam());
        ADD_FAILURE() << failure.member;
      } catch (const AutomationError& error) {
        EXPECT_EQ(error.Number(), 0x80004005u);
        EXPECT_THAT(error.Description(), testing::HasSubstr(kBuilder + failure.member));
      }
    }
    EXPECT_TRUE(builder.HoldsNothing()) << failure.member;
    EXPECT_THAT(builder.automation.lines, Contains("release " + kBuilder)) << failure.member;
  }
}

TEST_P(BuilderCommands, FailWhereAMemberGivesNoObject) {
  for (const std::string& member : {kBuilder + ".Framework", kBroker}) {
    BuilderMachine builder;
    builder.automation.Answer(member, {automation::ObjectRef()});
    if (GetParam().handler == ConfigureTag) {
      EXPECT_EQ(Send(builder, GetParam()), test::kFailure);
    } else {
      EXPECT_EQ(test::RaisedBy([&] { Send(builder, GetParam()); }), 91);
    }
    EXPECT_TRUE(builder.HoldsNothing());
  }
}

TEST(ConfigureTag, IsTheFailedReplyWhenTheSecondWaitFails) {
  BuilderMachine builder;
  builder.automation.Answer(kBuilder + ".UILoaded", {true});
  builder.automation.failAtAccess = 8;
  EXPECT_EQ(Send(builder, kConfigureTag), test::kFailure);
  EXPECT_THAT(builder.automation.lines, Contains("get " + kBuilder + ".UILoaded failed"));
  EXPECT_TRUE(builder.HoldsNothing());
}

TEST(ConfigureTag, IsTheFailedReplyWhenUILoadedIsNoYesOrNo) {
  BuilderMachine builder;
  builder.automation.Answer(kBuilder + ".UILoaded", {std::string("soon")});
  EXPECT_EQ(Send(builder, kConfigureTag), test::kFailure);
  EXPECT_EQ(test::RaisedBy([&] { Send(builder, kNewTag); }), 13);
}

TEST(ConfigureTag, WaitsForTheWindowThatTheWorkflowHasClosed) {
  BuilderMachine builder;
  builder.automation.Answer(kBuilder + ".UILoaded", {true, false, false, true});
  EXPECT_EQ(Send(builder, kConfigureTag), test::kSuccess);
  EXPECT_EQ(builder.machine.pump.pumped, 2 + 2);
  EXPECT_EQ(builder.machine.pump.now, 100ms + 2 * 200ms + 200ms);
}

TEST(UiSettings, AreSwitchedOffByConfigureTagBeforeTheBuilderIsMadeAndOnBeforeItIsLetGo) {
  BuilderMachine builder;
  std::vector<std::string> seen;
  builder.automation.onAccess = [&](const std::string&) { seen.push_back(builder.ToolBar()); };
  Send(builder, kConfigureTag);
  EXPECT_THAT(seen, testing::Each("0"));
  EXPECT_EQ(builder.ToolBar(), "-1");
}

TEST(UiSettings, AreSwitchedOnByRebuildAllTagsBehindTheWorkflow) {
  BuilderMachine builder;
  std::string atShutdown;
  builder.automation.onAccess = [&](const std::string& line) {
    (line.ends_with("Shutdown()") ? atShutdown : atShutdown.assign("before")) = builder.ToolBar();
  };
  Send(builder, kRebuildAllTags);
  EXPECT_EQ(atShutdown, "-1");
}

TEST(UiSettings, AreLeftAloneByNewTagAndByWhatFailsBeforeThem) {
  BuilderMachine builder;
  Send(builder, kNewTag);
  EXPECT_EQ(builder.ToolBar(), "1");
  builder.automation.failAt = kBroker + ".CallService";
  EXPECT_THROW(Send(builder, kRebuildAllTags), AutomationError);
  EXPECT_EQ(builder.ToolBar(), "1");
  Send(builder, kConfigureTag);
  EXPECT_EQ(builder.ToolBar(), "0") << "a builder that failed leaves them as they were for it";
}

TEST(UiSettings, ThatCannotBeWrittenEndConfigureTagBeforeTheBuilderIsMade) {
  BuilderMachine builder;
  builder.machine.platform.files->Remove(BuilderMachine::UiKeys());
  EXPECT_EQ(test::RaisedBy([&] { Send(builder, kConfigureTag); }), 53);
  EXPECT_EQ(builder.automation.lines, Lines{"release report server"});
}

TEST(UiSettings, ThatCannotBeWrittenBehindTheWorkflowAreAFailureOfEachKind) {
  const auto removeFile = [](BuilderMachine& builder) {
    builder.automation.Do(kBroker + ".CallService", [&](auto) {
      builder.machine.platform.files->Remove(BuilderMachine::UiKeys());
      return automation::Value();
    });
  };
  BuilderMachine configuring;
  removeFile(configuring);
  EXPECT_EQ(Send(configuring, kConfigureTag), test::kFailure);
  EXPECT_TRUE(configuring.HoldsNothing());

  BuilderMachine rebuilding;
  removeFile(rebuilding);
  EXPECT_EQ(test::RaisedBy([&] { Send(rebuilding, kRebuildAllTags); }), 53);
  EXPECT_TRUE(rebuilding.HoldsNothing());
}

TEST(UiSettings, WithoutAProgramFolderEndConfigureTagWithTheirOwnSource) {
  BuilderMachine builder;
  builder.machine.SetBinPath("");
  try {
    Send(builder, kConfigureTag);
    FAIL();
  } catch (const AutomationError& error) {
    EXPECT_EQ(error.Source(), "KDQU470.setUIValue");
    EXPECT_EQ(error.Description(), "Unable to read BinPath");
  }
}

TEST(RebuildAllTags, EndsTheCallWhenShutdownFails) {
  BuilderMachine builder;
  builder.automation.failAt = kBuilder + ".Shutdown";
  EXPECT_THROW(Send(builder, kRebuildAllTags), AutomationError);
  EXPECT_TRUE(builder.HoldsNothing());
}

}  // namespace
}  // namespace parvex
