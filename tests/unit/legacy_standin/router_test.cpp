#include "legacy_standin/router.h"

#include <gtest/gtest.h>

#include "platform/automation_error.h"
#include "tests/support/fake_platform.h"

namespace parvex::standin {
namespace {

class RouterTest : public ::testing::Test {
 protected:
  bool Send(const std::string& request) { return Router(application, requests).SendRequestMessage(request, answer); }

  test::FakeMachine machine;
  Application application{machine.platform.registry,
                          machine.platform.files,
                          machine.platform.projectDatabases,
                          machine.platform.codePage,
                          {}};
  RequestTable requests = {
      {"greet", [](const Application&, const xml::Document& request) { return request.First("//VALUE").Text(); }},
      {"fail", [](const Application&, const xml::Document&) -> std::string {
         throw MakeRuntimeError(RuntimeError::FileExists, "it is there already");
       }}};
  std::string answer = "what stood there before";
};

TEST_F(RouterTest, ARequestIsCarriedOutByTheHandlerOfItsName) {
  EXPECT_TRUE(Send("<COMMAND><NAME>greet</NAME><PARAMETER><VALUE>Hello</VALUE></PARAMETER></COMMAND>"));
  EXPECT_EQ(answer, "Hello");
}

TEST_F(RouterTest, AHandlersErrorRefusesTheRequestWithTheReason) {
  EXPECT_FALSE(Send("<COMMAND><NAME>fail</NAME></COMMAND>"));
  EXPECT_EQ(answer, "it is there already");
}

TEST_F(RouterTest, AnUnknownRequestIsRefusedByName) {
  EXPECT_FALSE(Send("<COMMAND><NAME>Greet</NAME></COMMAND>"));
  EXPECT_EQ(answer, "unknown request \"Greet\"");
}

TEST_F(RouterTest, WhatIsNoCommandDocumentIsRefused) {
  EXPECT_FALSE(Send("<COMMAND><NAME>greet"));
  EXPECT_NE(answer.find("no XML document"), std::string::npos) << answer;
  EXPECT_FALSE(Send("<COMMAND/>"));
  EXPECT_EQ(answer, "the request has no COMMAND/NAME");
}

TEST_F(RouterTest, ARequestThatItIsToldToRefuseIsRefused) {
  application.settings.router.refuse = {"greet"};
  EXPECT_FALSE(Send("<COMMAND><NAME>greet</NAME></COMMAND>"));
  EXPECT_EQ(answer, "told to refuse \"greet\"");
}

}  // namespace
}  // namespace parvex::standin
