#pragma once

#include <gtest/gtest.h>

#include <filesystem>
#include <sstream>
#include <string>
#include <vector>

#include "legacy_standin/installation/json_members.h"
#include "tests/cli/program.h"

namespace parvex::test {

/// A sample machine of its own for each test, on which commands are carried out with a journal.
class SampleWalk : public testing::Test {
 protected:
  SampleWalk() { EXPECT_EQ(RunParvex({"machine", "create", Sample()}).status, 0); }

  std::string Sample() const { return (folder_.Path() / "sample").string(); }
  /// A path below the folder that holds Bin, Temp and Projects.
  std::filesystem::path Installed(const std::string& path) const {
    return std::filesystem::path(Sample()) / "drive_c/Korvane/TQ5-VX" / path;
  }
  void SetStandin(const std::string& json) const {
    WriteHostFile(std::filesystem::path(Sample()) / "standin.json", json);
  }

  /// Carries out the command documents of these files in one run, through Pull.
  Outcome Pull(const std::vector<std::string>& files) const {
    std::vector<std::string> arguments = {"--machine", Sample(), "--journal", Journal(), "pull"};
    arguments.insert(arguments.end(), files.begin(), files.end());
    return RunParvex(arguments);
  }

  /// The lines of one kind in the journal of the last run.
  std::vector<standin::Json> Journalled(const std::string& kind) const {
    std::vector<standin::Json> found;
    std::istringstream text(ReadHostFile(Journal()));
    for (std::string line; std::getline(text, line);) {
      standin::Json json = standin::ParseJson(line, "journal");
      if (json["kind"] == kind) {
        found.push_back(std::move(json));
      }
    }
    return found;
  }

  std::string Journal() const { return (folder_.Path() / "journal").string(); }

 private:
  TemporaryFolder folder_;
};

}  // namespace parvex::test
