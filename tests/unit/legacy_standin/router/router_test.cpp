#include "legacy_standin/router/router.h"

#include <gtest/gtest.h>

#include "seams/automation_error.h"
#include "tests/support/raised_by.h"
#include "tests/unit/legacy_standin/standin_machine.h"

namespace parvex::standin {
namespace {

class RouterTest : public testing::Test, protected StandinMachine {
 protected:
  bool Send(const std::string& request) { return Router(application, requests).SendRequestMessage(request, answer); }

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

TEST_F(RouterTest, TheFirstOfSeveralParametersOfANameCounts) {
  const xml::Document request = xml::Document::Parse(
      "<COMMAND><NAME>greet</NAME><PARAMETER><NAME>a</NAME><VALUE/></PARAMETER><PARAMETER><NAME>b</NAME><VALUE>1</"
      "VALUE>"
      "</PARAMETER><PARAMETER><NAME>b</NAME><VALUE>2</VALUE></PARAMETER><PARAMETER><NAME>c</NAME></PARAMETER></"
      "COMMAND>");
  EXPECT_EQ(FindParameter(request, "a"), "");
  EXPECT_EQ(FindParameter(request, "b"), "1");
  EXPECT_EQ(FindParameter(request, "c"), "");
  EXPECT_EQ(FindParameter(request, "B"), std::nullopt);
  EXPECT_EQ(NeedParameter(request, "b"), "1");
  for (const char* missing : {"a", "B"}) {
    EXPECT_EQ(test::RaisedBy([&] { NeedParameter(request, missing); }), 5) << missing;
  }
}

}  // namespace
}  // namespace parvex::standin
