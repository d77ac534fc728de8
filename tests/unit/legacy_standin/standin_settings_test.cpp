#include "legacy_standin/standin_settings.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "platform/automation_error.h"
#include "tests/support/fake_platform.h"

namespace parvex::standin {
namespace {

using testing::ElementsAre;
using testing::HasSubstr;

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

TEST(StandinSettingsTest, AcceptsThePartsOfComponentsThatDoNotExistYet) {
  EXPECT_NO_THROW(ParseStandinSettings(
      R"({"builder":{"failAt":"View","slowPolls":20},"reportServer":{"makeReport":false}})", "standin.json"));
}

struct Refused {
  const char* reason;
  const char* text;
  const char* named;
};

class StandinSettingsRefusal : public testing::TestWithParam<Refused> {};

TEST_P(StandinSettingsRefusal, NamesTheFileAndThePlace) {
  try {
    ParseStandinSettings(GetParam().text, "M/standin.json");
    FAIL() << "accepted: " << GetParam().text;
  } catch (const AutomationError& error) {
    EXPECT_EQ(error.RuntimeNumber(), 5);
    EXPECT_THAT(error.Description(), HasSubstr("M/standin.json"));
    EXPECT_THAT(error.Description(), HasSubstr(GetParam().named));
  }
}

INSTANTIATE_TEST_SUITE_P(
    Texts, StandinSettingsRefusal,
    testing::Values(Refused{"Empty", "", "parse error"}, Refused{"Truncated", R"({"workflow":{)", "parse error"},
                    Refused{"NoObject", "[]", "the content has to be an object, not []"},
                    Refused{"WorkflowNoObject", R"({"workflow":true})", "workflow has to be an object, not true"},
                    Refused{"FlagAsText", R"({"workflow":{"cancel":"yes"}})", "workflow.cancel"},
                    Refused{"ExitCodeTooBig", R"({"workflow":{"exitCode":256}})", "workflow.exitCode"},
                    Refused{"ExitCodeNegative", R"({"workflow":{"exitCode":-1}})", "-1"},
                    Refused{"ExitCodeBroken", R"({"workflow":{"exitCode":1.5}})", "1.5"},
                    Refused{"MisspeltKey", R"({"workflow":{"cancelled":true}})", "workflow.cancelled"},
                    Refused{"MisspeltPart", R"({"workflows":{}})", "workflows"},
                    Refused{"RefuseNoList", R"({"router":{"refuse":"copyProject"}})", "router.refuse"},
                    Refused{"RefuseNoTexts", R"({"router":{"refuse":[1]}})", "router.refuse"}),
    [](const testing::TestParamInfo<Refused>& info) { return info.param.reason; });

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

}  // namespace
}  // namespace parvex::standin
