#include "tests/contract/contract_fixture.h"

#include <gtest/gtest.h>

#include <chrono>
#include <thread>

namespace parvex::test {

std::vector<std::string> ContractMachine::ProbeArguments() {
  std::vector<std::string> lines;
  std::string line;
  for (const char c : files.ReadAll(Path(kProbeReport))) {
    if (c == '\n') {
      lines.push_back(line);
      line.clear();
    } else if (c != '\r') {
      line.push_back(c);
    }
  }
  return lines;
}

std::uint32_t WaitForExit(Process& process) {
  const auto deadline = std::chrono::steady_clock::now() + std::chrono::seconds(20);
  while (std::chrono::steady_clock::now() < deadline) {
    if (const std::uint32_t exitCode = process.ExitCode(); exitCode != kStillActive) {
      return exitCode;
    }
    std::this_thread::sleep_for(std::chrono::milliseconds(2));
  }
  ADD_FAILURE() << "the process still runs";
  return kStillActive;
}

}  // namespace parvex::test
