#include "journal/replay_routers.h"

#include <gtest/gtest.h>

#include <functional>
#include <sstream>
#include <string>

#include "journal/journalled_platform.h"
#include "seams/automation_error.h"
#include "tests/support/fake_platform.h"

namespace parvex::journal {
namespace {

std::string DescriptionOfErrorFrom(const std::function<void()>& operation, std::uint32_t number) {
  try {
    operation();
  } catch (const AutomationError& error) {
    EXPECT_EQ(number, error.Number());
    return error.Description();
  }
  return "no error";
}

// Sends requests to a router over a journal; the answer of each is "success:answer".
class Replay {
 public:
  explicit Replay(std::string_view journal) : routers_(journal, "r.jsonl"), router_(routers_.Create()) {}
  std::string Send(const std::string& request) {
    std::string response = "left over";
    const bool success = router_->SendRequestMessage(request, response);
    return (success ? "true:" : "false:") + response;
  }
  std::unique_ptr<MessageRouter> AnotherRouter() { return routers_.Create(); }
  std::optional<ReplayRouters::Unused> Left() const { return routers_.Left(); }

 private:
  ReplayRouters routers_;
  std::unique_ptr<MessageRouter> router_;
};

TEST(ReplayRouters, AnswersInOrderWhateverIsAskedWhereALineHasNoRequest) {
  Replay replay(
      "{\"kind\":\"router\",\"answer\":\"1\",\"success\":true}\n"
      "{\"kind\":\"router\",\"answer\":\"2\",\"success\":false}\n");
  EXPECT_EQ(replay.Send("a"), "true:1");
  EXPECT_EQ(replay.Send("b"), "false:2");
}

TEST(ReplayRouters, AnswersALineWithRequestOnlyForThatRequest) {
  Replay replay(
      "{\"kind\":\"router\",\"request\":\"<A/>\",\"answer\":\"1\",\"success\":true}\n"
      "{\"kind\":\"router\",\"request\":\"<B/>\",\"answer\":\"2\",\"success\":true}\n");
  EXPECT_EQ(replay.Send("<A/>"), "true:1");
  const std::string description = DescriptionOfErrorFrom([&] { replay.Send("<C/>"); }, 0x800A0005u);
  EXPECT_EQ(description, "r.jsonl line 2 answers another request. Expected: <B/> Actual: <C/>");
}

TEST(ReplayRouters, AnswersARequestWhoseMarkupIsLaidOutInAnotherWay) {
  // As MSXML writes it, and as the native document does, and as a person lays it out.
  const std::string journal = R"({"kind":"router","request":"<?xml version=\"1.0\"?>\r\n<A b=\"1\" c=\"2\"><D/>)"
                              R"(<E>1\n2</E></A>\r\n","answer":"1"})";
  EXPECT_EQ(Replay(journal).Send("<A b=\"1\" c=\"2\"><D/><E>1\n2</E></A>"), "true:1");
  EXPECT_EQ(Replay(journal).Send("<A c='2' b='1'>\r\n\t<D></D>\r\n\t<E>1\r\n2</E>\r\n</A>"), "true:1");
}

TEST(ReplayRouters, TakesARequestThatIsNoXmlByteForByte) {
  Replay replay(R"({"kind":"router","request":"a","answer":"1"})");
  EXPECT_EQ(DescriptionOfErrorFrom([&] { replay.Send("a "); }, 0x800A0005u),
            "r.jsonl line 1 answers another request. Expected: a Actual: a ");
}

TEST(ReplayRouters, AMismatchUsesItsLineUp) {
  Replay replay(
      "{\"kind\":\"router\",\"request\":\"<A/>\",\"answer\":\"1\"}\n{\"kind\":\"router\",\"request\":\"<B/"
      ">\",\"answer\":\"2\"}\n");
  EXPECT_THROW(replay.Send("x"), AutomationError);
  EXPECT_EQ(replay.Send("<B/>"), "true:2");
}

TEST(ReplayRouters, ShowsTheRequestThatHasNoLineLeft) {
  Replay replay("");
  EXPECT_EQ(DescriptionOfErrorFrom([&] { replay.Send("<A/>"); }, 0x800A0005u),
            "r.jsonl has no router line left. Expected: no request. Actual: <A/>");
}

TEST(ReplayRouters, GoesOnWhereTheLastRouterStopped) {
  Replay replay("{\"kind\":\"router\",\"answer\":\"1\"}\n{\"kind\":\"router\",\"answer\":\"2\"}");
  EXPECT_EQ(replay.Send("a"), "true:1");
  std::string response;
  replay.AnotherRouter()->SendRequestMessage("b", response);
  EXPECT_EQ(response, "2");
}

TEST(ReplayRouters, TakesAnEmptyAnswerAndSuccessForWhatALineLeavesOut) {
  Replay replay("{\"kind\":\"router\"}");
  EXPECT_EQ(replay.Send("a"), "true:");
}

TEST(ReplayRouters, PassesOverOtherKindsEmptyLinesUnknownKeysAndAByteOrderMark) {
  Replay replay(
      "\xEF\xBB\xBF{\"kind\":\"process\",\"command\":\"x\"}\r\n\r\n  \t\n{\"kind\":\"automation\"}\n"
      "{\"kind\":\"messageBox\"}\n{\"kind\":\"note\"}\n{\"kind\":\"processStart\"}\n{\"later\":[1],\"kind\":\"router\","
      "\"answer\":\"1\"}\r\n");
  EXPECT_EQ(replay.Send("a"), "true:1");
}

TEST(ReplayRouters, AnswersWithTextBeyondAscii) {
  Replay replay("{\"kind\":\"router\",\"request\":\"\\u00fc\",\"answer\":\"\xC3\xBC \\ud83d\\ude00\"}");
  EXPECT_EQ(replay.Send("\xC3\xBC"), "true:\xC3\xBC \xF0\x9F\x98\x80");
}

TEST(ReplayRouters, RaisesTheErrorOfALineThatRecordedOne) {
  Replay replay(
      "{\"kind\":\"router\",\"request\":\"r\",\"error\":{\"number\":\"0x800706BA\",\"source\":\"router\","
      "\"description\":\"gone\"}}");
  try {
    replay.Send("r");
    FAIL() << "no error";
  } catch (const AutomationError& error) {
    EXPECT_EQ(error.Number(), 0x800706BAu);
    EXPECT_EQ(error.Source(), "router");
    EXPECT_EQ(error.Description(), "gone");
  }
}

TEST(ReplayRouters, KnowWhichLinesNobodyAskedFor) {
  Replay replay(
      "{\"kind\":\"router\",\"answer\":\"1\"}\n{\"kind\":\"note\"}\n\n"
      "{\"kind\":\"router\",\"request\":\"<B/>\",\"answer\":\"2\"}\n{\"kind\":\"router\"}\n");
  ASSERT_TRUE(replay.Left());
  EXPECT_EQ(replay.Left()->count, 3u);
  EXPECT_EQ(replay.Left()->lineNumber, 1u);
  EXPECT_EQ(replay.Left()->request, std::nullopt);
  replay.Send("a");
  EXPECT_EQ(replay.Left()->count, 2u);
  EXPECT_EQ(replay.Left()->lineNumber, 4u);
  EXPECT_EQ(replay.Left()->request, "<B/>");
  replay.Send("<B/>");
  replay.Send("c");
  EXPECT_FALSE(replay.Left());
}

struct BadLine {
  const char* what;
  const char* line;
};

class MalformedLine : public testing::TestWithParam<BadLine> {};

TEST_P(MalformedLine, IsRefusedWithItsNumber) {
  const std::string journal = "{\"kind\":\"router\"}\n\n" + std::string(GetParam().line) + "\n{\"kind\":\"router\"}\n";
  const std::string description = DescriptionOfErrorFrom([&] { ReplayRouters(journal, "r.jsonl"); }, 0x800A000Du);
  EXPECT_EQ(description.find("r.jsonl line 3 is no journal line: "), 0u) << description;
}

INSTANTIATE_TEST_SUITE_P(
    Lines, MalformedLine,
    testing::Values(BadLine{"NoJson", "router"}, BadLine{"CutShort", "{\"kind\":\"router\""},
                    BadLine{"TwoObjects", "{\"kind\":\"router\"}{\"kind\":\"router\"}"},
                    BadLine{"NotUtf8", "{\"kind\":\"router\",\"answer\":\"\xFC\"}"}, BadLine{"Array", "[\"router\"]"},
                    BadLine{"Number", "17"}, BadLine{"NoKind", "{\"answer\":\"1\"}"},
                    BadLine{"KindOfWrongType", "{\"kind\":1}"}, BadLine{"UnknownKind", "{\"kind\":\"Router\"}"},
                    BadLine{"RequestOfWrongType", "{\"kind\":\"router\",\"request\":1}"},
                    BadLine{"RequestNull", "{\"kind\":\"router\",\"request\":null}"},
                    BadLine{"AnswerOfWrongType", "{\"kind\":\"router\",\"answer\":{}}"},
                    BadLine{"SuccessOfWrongType", "{\"kind\":\"router\",\"success\":\"true\"}"},
                    BadLine{"ErrorOfWrongType", "{\"kind\":\"router\",\"error\":\"no\"}"},
                    BadLine{"ErrorWithoutNumber",
                            "{\"kind\":\"router\",\"error\":{\"source\":\"\",\"description\":\"\"}}"},
                    BadLine{"ErrorNumberNoHex",
                            "{\"kind\":\"router\",\"error\":{\"number\":\"zwei\",\"source\":\"\","
                            "\"description\":\"\"}}"},
                    BadLine{"ErrorNumberTooLong",
                            "{\"kind\":\"router\",\"error\":{\"number\":\"0x1FFFFFFFF\","
                            "\"source\":\"\",\"description\":\"\"}}"}),
    [](const auto& info) { return info.param.what; });

TEST(ReplayRouters, AnswerFromAJournalAsTheOutsideDid) {
  std::ostringstream journal;
  test::FakeMachine machine;
  machine.routers.answers = {{true, "<A>\xC3\xBC</A>\r\n"}, {false, "no"}};
  JournalledPlatform journalled(machine.platform, journal);
  const auto router = journalled.Platform().messageRouters->Create();
  std::string response;
  router->SendRequestMessage("first \"request\"", response);
  router->SendRequestMessage("second", response);
  journalled.Platform().messageBoxes->Show("t", "c", MessageBoxes::Icon::None);

  Replay replay(journal.str());
  EXPECT_EQ(replay.Send("first \"request\""), "true:<A>\xC3\xBC</A>\r\n");
  EXPECT_EQ(replay.Send("second"), "false:no");
}

}  // namespace
}  // namespace parvex::journal
