#include "legacy_env/process_runner.h"

#include <chrono>
#include <memory>

#include "legacy_env/told_wait.h"
#include "seams/automation_error.h"

namespace parvex {
namespace {

constexpr int kMinimisedWithoutFocus = 6;
constexpr std::chrono::milliseconds kPollInterval{100};

// Reading, pumping and sleeping come in this order, also after the last reading: deliberate, the caller's windows get
// their turn at least once however quickly the program ends.
std::int32_t WaitForExit(const Platform& platform, Process& process, std::string_view waitedFor) {
  ToldWait wait(platform.progress);
  std::uint32_t exitCode = kStillActive;
  do {
    exitCode = process.ExitCode();
    wait.GoesOn(waitedFor);
    platform.messagePump->RunPending();
    platform.messagePump->Sleep(kPollInterval);
  } while (exitCode == kStillActive);
  return static_cast<std::int32_t>(exitCode);
}

}  // namespace

std::int32_t RunAndWait(const Platform& platform, std::string_view commandLine, std::optional<int> windowStyle,
                        std::string_view program, std::string_view waitedFor) {
  const int asked = windowStyle.value_or(kMinimisedWithoutFocus);
  const int style = asked >= 0 && asked <= 6 ? asked : kMinimisedWithoutFocus;
  std::unique_ptr<Process> process;
  try {
    process = platform.processes->Start(commandLine, style, program);
  } catch (const AutomationError& error) {
    return static_cast<std::int32_t>(kObjectErrorBase + error.RuntimeNumber());
  }
  return WaitForExit(platform, *process, waitedFor);
}

}  // namespace parvex
