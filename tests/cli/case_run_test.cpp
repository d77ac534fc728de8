#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <filesystem>
#include <set>

#include "interface/command_table.h"
#include "recording/recorded_case.h"
#include "tests/cli/program.h"

// Recorded calls of the sample machine, done again.

namespace parvex::test {
namespace {

using testing::AllOf;
using testing::EndsWith;
using testing::HasSubstr;

// A sample machine and a folder of cases.
class CaseRun : public testing::Test {
 protected:
  CaseRun() { EXPECT_EQ(RunParvex({"machine", "create", sample}).status, 0); }

  Outcome Record(std::vector<std::string> arguments) {
    arguments.insert(arguments.begin(), {"--machine", sample, "--record", cases});
    return RunParvex(arguments);
  }
  std::string Command(const std::string& name) const { return sample + "/commands/" + name + ".xml"; }

  std::vector<std::string> Cases() const {
    std::vector<std::string> paths;
    for (const auto& entry : std::filesystem::directory_iterator(cases)) {
      paths.push_back(entry.path().string());
    }
    std::sort(paths.begin(), paths.end());
    return paths;
  }

  TemporaryFolder folder;
  const std::string sample = (folder.Path() / "sample").string();
  const std::string cases = (folder.Path() / "cases").string();
};

TEST_F(CaseRun, ReproducesEveryCommandOfTheSampleMachine) {
  std::vector<std::string> pull = {"pull"};
  std::vector<std::string> ngorla = {"pull-ngorla"};
  std::vector<std::string> names;
  for (const auto& entry : std::filesystem::directory_iterator(sample + "/commands")) {
    names.push_back(entry.path().stem().string());
  }
  std::sort(names.begin(), names.end());
  for (const std::string& name : names) {
    (name.starts_with("getHybrisXMLNoUI") ? ngorla : pull).push_back(Command(name));
  }
  ngorla.push_back(Command("getHybrisXML"));
  EXPECT_EQ(Record(pull).status, 0);
  EXPECT_EQ(Record(ngorla).status, 0);
  const Outcome ran = RunParvex({"case", "run", cases});
  EXPECT_EQ(ran.status, 0) << ran.out << ran.err;
  EXPECT_THAT(ran.out, EndsWith(std::to_string(names.size() + 1) + " reproduced, 0 not\n"));
}

}  // namespace
}  // namespace parvex::test
