#include "legacy_standin/installation/standin_settings.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <sys/stat.h>

#include "seams/automation_error.h"
#include "tests/support/fake_platform.h"
#include "tests/unit/legacy_standin/refused_text.h"

namespace parvex::standin {
namespace {

using testing::ElementsAre;

TEST(StandinSettingsTest, AnEmptyObjectMeansBehave) {
  const StandinSettings settings = ParseStandinSettings("{}", "standin.json");
  EXPECT_FALSE(settings.workflow.cancel);
  EXPECT_FALSE(settings.workflow.exitCode.has_value());
  EXPECT_FALSE(settings.workflow.writeNothing);
  EXPECT_TRUE(settings.router.refuse.empty());
}

TEST(StandinSettingsTest, ReadsEveryKeyOfTheWorkflowAndTheRouter) {
  const StandinSettings settings = ParseStandinSettings(
      R"({"workflow":{"cancel":true,"exitCode":5,"writeNothing":true},"router":{"refuse":["copyProject","getTag"]}})",
      "standin.json");
  EXPECT_TRUE(settings.workflow.cancel);
  EXPECT_EQ(settings.workflow.exitCode, 5);
  EXPECT_TRUE(settings.workflow.writeNothing);
  EXPECT_THAT(settings.router.refuse, ElementsAre("copyProject", "getTag"));
}

TEST(StandinSettingsTest, TheBuilderBehavesUnlessToldOtherwise) {
  const StandinSettings::Builder behaving = ParseStandinSettings(R"({"builder":{}})", "standin.json").builder;
  EXPECT_FALSE(behaving.missing);
  EXPECT_FALSE(behaving.cancelled);
  EXPECT_EQ(behaving.failAt, "");
  EXPECT_EQ(behaving.polls, 2);
  const StandinSettings::Builder told =
      ParseStandinSettings(R"({"builder":{"missing":true,"cancelled":true,"failAt":"View","polls":20}})", "s.json")
          .builder;
  EXPECT_TRUE(told.missing);
  EXPECT_TRUE(told.cancelled);
  EXPECT_EQ(told.failAt, "View");
  EXPECT_EQ(told.polls, 20);
}

TEST(StandinSettingsTest, TheBuildersCancelAndPollsHaveTwoNamesEach) {
  const StandinSettings::Builder told =
      ParseStandinSettings(R"({"builder":{"cancel":true,"slowPolls":20}})", "standin.json").builder;
  EXPECT_TRUE(told.cancelled);
  EXPECT_EQ(told.polls, 20);
  EXPECT_EQ(ParseStandinSettings(R"({"builder":{"cancel":false,"polls":0}})", "standin.json").builder.polls, 0);
}

TEST(StandinSettingsTest, WhatTheBuilderCannotDoIsRefused) {
  for (const char* builder :
       {R"({"failAt":"view"})", R"({"failAt":1})", R"({"polls":-1})", R"({"polls":1.5})", R"({"polls":"many"})",
        R"({"cancelled":"yes"})", R"({"slow":true})", R"({"cancel":1})", R"({"slowPolls":1000001})"}) {
    EXPECT_THROW(ParseStandinSettings("{\"builder\":" + std::string(builder) + "}", "standin.json"), AutomationError)
        << builder;
  }
}

TEST(StandinSettingsTest, TheReportServerBehavesUnlessToldOtherwise) {
  const StandinSettings behaving = ParseStandinSettings(R"({"reportServer":{}})", "standin.json");
  EXPECT_FALSE(behaving.reportServer.missing);
  EXPECT_EQ(behaving.reportServer.failAt, "");
  EXPECT_TRUE(behaving.reportServer.makeReport);
  const StandinSettings told =
      ParseStandinSettings(R"({"reportServer":{"missing":true,"failAt":"AddTag","makeReport":false}})", "standin.json");
  EXPECT_TRUE(told.reportServer.missing);
  EXPECT_EQ(told.reportServer.failAt, "AddTag");
  EXPECT_FALSE(told.reportServer.makeReport);
}

class StandinSettingsRefusal : public testing::TestWithParam<RefusedText> {};

TEST_P(StandinSettingsRefusal, NamesTheFileAndThePlace) { ExpectRefused(GetParam(), ParseStandinSettings); }

INSTANTIATE_TEST_SUITE_P(
    Texts, StandinSettingsRefusal,
    testing::Values(RefusedText{"Empty", "", "parse error"},
                    RefusedText{"Truncated", R"({"workflow":{)", "parse error"},
                    RefusedText{"NoObject", "[]", "the content has to be an object, not []"},
                    RefusedText{"WorkflowNoObject", R"({"workflow":true})", "workflow has to be an object, not true"},
                    RefusedText{"FlagAsText", R"({"workflow":{"cancel":"yes"}})", "workflow.cancel"},
                    RefusedText{"ExitCodeTooBig", R"({"workflow":{"exitCode":256}})", "workflow.exitCode"},
                    RefusedText{"ExitCodeNegative", R"({"workflow":{"exitCode":-1}})", "-1"},
                    RefusedText{"ExitCodeBroken", R"({"workflow":{"exitCode":1.5}})", "1.5"},
                    RefusedText{"MisspeltKey", R"({"workflow":{"cancelled":true}})", "workflow.cancelled"},
                    RefusedText{"MisspeltPart", R"({"workflows":{}})", "workflows"},
                    RefusedText{"RefuseNoList", R"({"router":{"refuse":"copyProject"}})", "router.refuse"},
                    RefusedText{"RefuseNoTexts", R"({"router":{"refuse":[1]}})", "router.refuse"},
                    RefusedText{"NoReportMember", R"({"reportServer":{"failAt":"Addtag"}})", "reportServer.failAt"},
                    RefusedText{"BothNamesOfAFlag", R"({"builder":{"cancel":true,"cancelled":true}})",
                                "builder.cancelled has to be left out beside builder.cancel, not true"},
                    RefusedText{"BothNamesOfACount", R"({"builder":{"polls":1,"slowPolls":2}})",
                                "builder.polls has to be left out beside builder.slowPolls, not 1"},
                    RefusedText{"MisspeltReportKey", R"({"reportServer":{"makeReports":false}})", "makeReports"}),
    ReasonOf);

TEST(StandinSettingsTest, AFolderWithoutTheFileHasTheDefaults) {
  const test::TemporaryFolder folder;
  EXPECT_FALSE(ReadStandinSettings(folder.Path()).workflow.cancel);
}

TEST(StandinSettingsTest, ReadsTheFileOfAMachineFolder) {
  const test::TemporaryFolder folder;
  test::WriteHostFile(folder.Path() / "standin.json", R"({"workflow":{"cancel":true}})");
  EXPECT_TRUE(ReadStandinSettings(folder.Path()).workflow.cancel);
}

TEST(StandinSettingsTest, AFolderInThePlaceOfTheFileIsAnError) {
  const test::TemporaryFolder folder;
  std::filesystem::create_directory(folder.Path() / "standin.json");
  EXPECT_THROW(ReadStandinSettings(folder.Path()), AutomationError);
}

TEST(StandinSettingsTest, APipeInThePlaceOfTheFileIsAnErrorAndNotWaitedFor) {
  const test::TemporaryFolder folder;
  ASSERT_EQ(mkfifo((folder.Path() / "standin.json").c_str(), 0600), 0);
  EXPECT_THROW(ReadStandinSettings(folder.Path()), AutomationError);
}

TEST(StandinSettingsTest, ALinkToADeviceIsAnError) {
  const test::TemporaryFolder folder;
  std::filesystem::create_symlink("/dev/zero", folder.Path() / "standin.json");
  EXPECT_THROW(ReadStandinSettings(folder.Path()), AutomationError);
}

}  // namespace
}  // namespace parvex::standin
