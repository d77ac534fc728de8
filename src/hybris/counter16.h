#pragma once

#include <cstdint>
#include <limits>
#include <string>

#include "seams/automation_error.h"

namespace parvex {

/// A count as the legacy protocol keeps it: signed, 16 bits wide. Counting past 32767 is the overflow error (6), which
/// names what was counted.
class Counter16 {
 public:
  /// `counted` names the things for the error's text and must outlive the counter; a string literal as a rule.
  explicit Counter16(const char* counted) : counted_(counted) {}

  /// Counts one more and gives the new count.
  std::int16_t Advance() {
    if (value_ == std::numeric_limits<std::int16_t>::max()) {
      throw MakeRuntimeError(RuntimeError::Overflow, "more than 32767 " + std::string(counted_));
    }
    return ++value_;
  }

  std::int16_t Value() const { return value_; }
  void Reset() { value_ = 0; }

 private:
  const char* counted_;
  std::int16_t value_ = 0;
};

}  // namespace parvex
