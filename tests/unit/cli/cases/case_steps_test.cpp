#include "cli/cases/case_steps.h"

#include <gtest/gtest.h>

#include "tests/unit/cli/cases/recorded_steps.h"

namespace parvex::cli {
namespace {

using recording::Json;

std::string OnlyFailure(std::string_view lines) {
  const recording::RecordedCase read = CaseOf(lines);
  return StepsOf(read).at(0).failure;
}

TEST(CaseSteps, JoinBothLinesOfAStep) {
  const recording::RecordedCase read = CaseOf(R"({"n":1,"at":"before","us":10,"kind":"router","request":"a"})"
                                              "\n"
                                              R"({"n":2,"at":"once","us":20,"kind":"note"})"
                                              "\n"
                                              R"({"n":1,"at":"after","us":30,"answer":"b","success":true})"
                                              "\n");
  const std::vector<CaseStep> steps = StepsOf(read);
  ASSERT_EQ(steps.size(), 2u);
  EXPECT_EQ(steps[0].number, 1u);
  EXPECT_EQ(steps[0].first, &read.steps[0]);
  EXPECT_EQ(steps[0].last, &read.steps[2]);
  EXPECT_EQ(steps[0].begun, 10u);
  EXPECT_EQ(steps[0].ended, 30u);
  EXPECT_EQ(steps[0].failure, "");
  EXPECT_EQ(steps[1].last, nullptr);
  EXPECT_EQ(steps[1].begun, 20u);
  EXPECT_EQ(steps[1].ended, 20u);
  EXPECT_EQ(steps[1].failure, "");
}

TEST(CaseSteps, FailWithTheirError) {
  EXPECT_EQ(OnlyFailure("{\"n\":1,\"at\":\"before\",\"kind\":\"router\"}\n"
                        "{\"n\":1,\"at\":\"after\",\"error\":{\"number\":\"0x800A0005\",\"source\":\"S\","
                        "\"description\":\"D\"}}\n"),
            "error 0x800A0005, S: D");
}

TEST(CaseSteps, FailWhenTheRouterRefuses) {
  EXPECT_EQ(OnlyFailure("{\"n\":1,\"at\":\"before\",\"kind\":\"router\"}\n"
                        "{\"n\":1,\"at\":\"after\",\"answer\":\"\",\"success\":false}\n"),
            "the router refused it");
}

TEST(CaseSteps, FailWhenTheyNeverComeBack) {
  const recording::RecordedCase read = CaseOf("{\"n\":7,\"at\":\"before\",\"us\":3,\"kind\":\"automation\"}\n");
  EXPECT_EQ(StepsOf(read)[0].failure, "never came back");
  EXPECT_EQ(StepsOf(read)[0].ended, std::nullopt);
}

TEST(CaseSteps, OfAProgramSayHowItEndedAndHowLongItRan) {
  const std::string start =
      "{\"n\":1,\"at\":\"before\",\"us\":5,\"kind\":\"process\",\"op\":\"start\"}\n"
      "{\"n\":1,\"at\":\"after\",\"us\":6,\"started\":true}\n";
  const std::string end =
      "{\"n\":2,\"at\":\"once\",\"us\":90,\"kind\":\"process\",\"op\":\"end\",\"start\":1,\"exitCode\":";
  for (const auto& [exitCode, failure] :
       {std::pair{"0", ""}, {"-5", "exit code -5"}, {"null", "still ran when it was let go"}}) {
    const recording::RecordedCase read = CaseOf(start + end + exitCode + "}\n");
    const std::vector<CaseStep> steps = StepsOf(read);
    EXPECT_EQ(steps[0].failure, "");
    EXPECT_EQ(steps[1].failure, failure);
    EXPECT_EQ(steps[1].begun, 5u);
    EXPECT_EQ(steps[1].ended, 90u);
  }
  EXPECT_EQ(OnlyFailure(start), "the program's end was not seen");
}

TEST(CaseSteps, OfStrangeValuesAreStepsAllTheSame) {
  const recording::RecordedCase read = CaseOf(
      "{\"n\":1,\"at\":\"x\",\"us\":\"y\",\"kind\":[1],\"error\":3}\n"
      "{\"n\":2,\"at\":\"once\",\"us\":-1,\"kind\":\"process\",\"op\":\"end\",\"start\":2}\n");
  const std::vector<CaseStep> steps = StepsOf(read);
  EXPECT_EQ(steps[0].begun, std::nullopt);
  EXPECT_EQ(steps[0].failure, "");
  EXPECT_EQ(SayingOf(*steps[0].first), "[1]");
  EXPECT_EQ(steps[1].begun, std::nullopt);
}

TEST(CaseSteps, SayNothingThatControlsATerminal) {
  EXPECT_EQ(SayingOf(Json::parse(R"({"n":1,"kind":"a\u001b","op":"get","k\u001b":"v\u001b","member":"","args":[]})")),
            "a\uFFFD get k\uFFFD v\uFFFD");
}

TEST(CaseOutcome, HasTheErrorOrTheMessageOfTheFailedReply) {
  EXPECT_EQ(OutcomeOf(CaseOf("")), "reply");
  EXPECT_EQ(OutcomeOf(CaseOf("", {{"outcome", "error"}, {"error", {{"source", "S"}, {"description", "D"}}}})),
            "error: S: D");
  recording::RecordedCase failed = CaseOf("", {{"outcome", "failure"}});
  failed.reply = "<LegacyORLA><returnError>-1</returnError><errorMessage>no tag</errorMessage></LegacyORLA>";
  EXPECT_EQ(OutcomeOf(failed), "failure: no tag");
}

}  // namespace
}  // namespace parvex::cli
