#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>

#include "tests/cli/program.h"

namespace parvex::test {
namespace {

using testing::HasSubstr;

TEST(RouterAnswers, ThatAreNoDocumentsAreToldThoughTheProtocolAnswers) {
  const CliMachine machine;
  const std::string file = machine.Write("list.xml", CommandText("getProjectList"));
  const std::string replay = machine.Write("r.jsonl",
                                           "{\"kind\":\"router\",\"answer\":\"<Projects>\",\"success\":true}\n"
                                           "{\"kind\":\"router\",\"answer\":\"\",\"success\":true}\n"
                                           "{\"kind\":\"router\",\"answer\":\"<Projects/>\",\"success\":true}\n");
  const Outcome outcome = machine.Run({"--replay", replay, "pull", file, file, file});
  EXPECT_EQ(outcome.status, 0);
  EXPECT_EQ(outcome.out, "<Projects/>\r\n") << "the protocol's replies are as they were";
  EXPECT_THAT(outcome.err,
              HasSubstr(file + ": the message router: its answer to getProjectList is no XML document: line"));
  EXPECT_THAT(outcome.err, HasSubstr("is no XML document: it is empty\n"));
  EXPECT_EQ(std::count(outcome.err.begin(), outcome.err.end(), '\n'), 2);
}

}  // namespace
}  // namespace parvex::test
