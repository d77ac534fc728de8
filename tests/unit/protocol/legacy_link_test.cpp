#include "protocol/legacy_link.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "protocol/legacy_requests.h"
#include "protocol/reply_envelope.h"
#include "seams/automation_error.h"
#include "tests/support/fake_platform.h"

namespace parvex {
namespace {

const xml::Document kRequest = xml::Document::Parse("<COMMAND><NAME>deleteProject</NAME></COMMAND>");

TEST(LegacyLink, SendsTheRequestWithAnEmptyResponseText) {
  test::FakeMachine machine;
  std::string responseAsSent = "unset";
  machine.routers.onRequest = [&](const std::string&, std::string& response) {
    responseAsSent = response;
    response = "<ok/>";
    return true;
  };
  std::string answer = "left over";
  EXPECT_TRUE(LegacyLink(machine.platform).SendRequestMessage("<COMMAND/>", answer));
  EXPECT_EQ(responseAsSent, "");
  EXPECT_EQ(answer, "<ok/>");
}

TEST(ForwardAndAcknowledge, AnswersSuccessWhenTheRouterCarriedItOutAndDropsItsAnswer) {
  test::FakeMachine machine;
  machine.routers.answers = {{true, "<Anything/>"}};
  const LegacyLink link(machine.platform);
  EXPECT_EQ(MakeReplyEnvelope().Xml(), ForwardAndAcknowledge(link, kRequest).Xml());
  EXPECT_EQ(machine.routers.requests, std::vector<std::string>{kRequest.Xml()});
}

TEST(ForwardAndAcknowledge, AnswersTheFailedReplyWhenTheRouterRefused) {
  test::FakeMachine machine;
  machine.routers.answers = {{false, "<Reason/>"}};
  EXPECT_EQ(MakeFailedReply().Xml(), ForwardAndAcknowledge(LegacyLink(machine.platform), kRequest).Xml());
}

class Told : public Notes {
 public:
  void Take(std::string_view about, std::string_view text) override {
    texts.push_back(std::string(about).append(": ").append(text));
  }
  void Find(std::string_view) override {}
  std::vector<std::string> texts;
};

TEST(Asking, NotesAnAnswerThatIsNoDocumentAndGoesOn) {
  test::FakeMachine machine;
  Told told;
  machine.platform.notes = &told;
  machine.routers.answers = {{true, "no <xml"}, {true, ""}, {true, "<fine/>"}, {false, "no <xml"}};
  const LegacyLink link(machine.platform);
  xml::Document answer;
  for (const bool carriedOut : {true, true, true, false}) {
    EXPECT_EQ(Ask(link, kRequest, answer), carriedOut);
  }
  ASSERT_EQ(told.texts.size(), 2u) << "a refusal need not be a document";
  EXPECT_TRUE(told.texts[0].starts_with("router: its answer to deleteProject is no XML document: ")) << told.texts[0];
  EXPECT_EQ(told.texts[1], "router: its answer to deleteProject is no XML document: it is empty");
}

TEST(Asking, NotesNothingWhereNobodyKeepsNotes) {
  test::FakeMachine machine;
  machine.routers.answers = {{true, "no <xml"}};
  xml::Document answer;
  EXPECT_TRUE(Ask(LegacyLink(machine.platform), kRequest, answer));
  EXPECT_TRUE(answer.IsEmpty());
}

TEST(ForwardAndAcknowledge, LetsAFailedRouterCallThrough) {
  test::FakeMachine machine;
  machine.routers.onRequest = [](const std::string&, std::string&) -> bool {
    throw AutomationError(0x800706BAu, "router", "gone");
  };
  EXPECT_THROW(ForwardAndAcknowledge(LegacyLink(machine.platform), kRequest), AutomationError);
}

}  // namespace
}  // namespace parvex
