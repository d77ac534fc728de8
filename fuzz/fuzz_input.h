#pragma once

#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <string_view>

#include "seams/automation_error.h"

namespace parvex::fuzz {

/// The bytes of one run, taken from the front. What is not there any more is zero or empty.
class Input {
 public:
  Input(const std::uint8_t* data, std::size_t size) : rest_(reinterpret_cast<const char*>(data), size) {}

  bool Empty() const { return rest_.empty(); }

  std::uint8_t TakeByte() {
    const std::uint8_t byte = rest_.empty() ? 0 : static_cast<std::uint8_t>(rest_.front());
    rest_.remove_prefix(rest_.empty() ? 0 : 1);
    return byte;
  }

  /// Little-endian.
  std::uint16_t TakeWord() {
    const std::uint8_t low = TakeByte();
    return static_cast<std::uint16_t>(low | TakeByte() << 8);
  }

  /// What stands before the next `end`, which is dropped.
  std::string_view TakeUpTo(char end) {
    const std::string_view part = rest_.substr(0, rest_.find(end));
    rest_.remove_prefix(part.size() + (part.size() < rest_.size() ? 1 : 0));
    return part;
  }

  std::string_view TakeRest() {
    const std::string_view part = rest_;
    rest_ = {};
    return part;
  }

 private:
  std::string_view rest_;
};

/// Ends the program when a promise is broken, which the fuzzer takes for a finding.
inline void Require(bool holds, const char* promise) {
  if (!holds) {
    std::fprintf(stderr, "broken promise: %s\n", promise);
    std::abort();
  }
}

/// What hostile input may end in beside a result: a run-time error that says something. Anything else that is thrown
/// ends the program.
template <typename Action>
void MayBeRefused(Action action) {
  try {
    action();
  } catch (const AutomationError& error) {
    Require(!error.Description().empty(), "a refusal says why");
  }
}

}  // namespace parvex::fuzz
