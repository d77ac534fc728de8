#pragma once

#include <cstdint>
#include <memory>
#include <optional>
#include <string_view>

#include "seams/platform.h"

namespace parvex {

/// A program that was started to be waited for.
class RunningProgram {
 public:
  /// Starts it; see RunAndWait.
  RunningProgram(const Platform& platform, std::string_view commandLine, std::optional<int> windowStyle);

  /// Gives what RunAndWait gives. A message that runs meanwhile may wait for the same program: both waits end.
  std::int32_t Wait();

 private:
  const Platform platform_;
  std::unique_ptr<Process> process_;  // null: it could not be started
  std::int32_t startFailure_ = 0;
};

/// Starts a program and waits until it has ended, letting pending window messages run between polls of 100 ms. There is
/// no time limit, deliberately: an interactive program ends when its user closes it.
///
/// Gives the exit code; a program that cannot be started gives the runtime's error number plus 0x80040000, a negative
/// number. A window style that is missing or outside 0 to 6 counts as 6 (minimised without focus).
std::int32_t RunAndWait(const Platform& platform, std::string_view commandLine,
                        std::optional<int> windowStyle = std::nullopt);

}  // namespace parvex
