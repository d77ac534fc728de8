#include "protocol/legacy_link.h"

#include <gtest/gtest.h>

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

TEST(ForwardAndAcknowledge, LetsAFailedRouterCallThrough) {
  test::FakeMachine machine;
  machine.routers.onRequest = [](const std::string&, std::string&) -> bool {
    throw AutomationError(0x800706BAu, "router", "gone");
  };
  EXPECT_THROW(ForwardAndAcknowledge(LegacyLink(machine.platform), kRequest), AutomationError);
}

}  // namespace
}  // namespace parvex
