#pragma once

#include <memory>
#include <string>
#include <vector>

#include "adapters/posix/machine.h"
#include "adapters/posix/native_system.h"
#include "recording/recorded_case.h"
#include "replay/case_run.h"
#include "seams/automation_error.h"
#include "tests/support/fake_platform.h"

namespace parvex::test {

// What a damaged record may say, and what comes of it.

inline const std::vector<recording::Json>& OddValues() {
  using recording::Json;
  static const std::vector<Json> values = {nullptr,
                                           true,
                                           -1,
                                           1.5,
                                           UINT64_MAX,
                                           "",
                                           "\x1b[2J\n",
                                           Json::array(),
                                           Json::array({Json::array({1})}),
                                           Json::object(),
                                           {{"number", 5}, {"a", Json::array({nullptr})}}};
  return values;
}

/// Does the call again: why it is not reproduced, in one text.
inline std::string ProblemOfRun(const recording::RecordedCase& read) {
  const auto machine = [](const std::string& folder, unsigned) -> std::shared_ptr<const Platform> {
    struct Folder {
      explicit Folder(const std::string& path) : machine(path), platform(machine.AsPlatform()) {}
      posix::Machine machine;
      Platform platform;
    };
    const auto held = std::make_shared<Folder>(folder);
    return {held, &held->platform};
  };
  const TemporaryFolder folder;
  posix::NativeSystem system;
  try {
    const replay::RunResult result =
        replay::RunCase(system, read, {.folder = folder.Path().string(), .machine = machine});
    return result.IsReproduced() ? "it is reproduced" : std::to_string(result.differences.size()) + " differences";
  } catch (const AutomationError& error) {
    return error.Description();
  }
}

}  // namespace parvex::test
