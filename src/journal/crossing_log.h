#pragma once

#include <cstdint>

#include "journal/journal_lines.h"

namespace parvex::journal {

/// Is told what crosses to the outside: before, and when it is over.
class CrossingLog {
 public:
  virtual ~CrossingLog() = default;
  /// Before the outside is entered. Gives a number to end the crossing with.
  virtual std::uint64_t Begin(const Json& line) = 0;
  /// When it is over; `line` then holds the result, or `error` is what it ended in.
  virtual void End(std::uint64_t number, const Json& line, const AutomationError* error) = 0;
  /// What happens in one moment.
  virtual void Note(const Json& line) = 0;
};

/// Carries out an operation that gets its line to fill in; an AutomationError goes on to the caller.
template <typename Operation>
auto Watch(CrossingLog& log, Json line, Operation operation) {
  const std::uint64_t number = log.Begin(line);
  try {
    auto result = operation(line);
    log.End(number, line, nullptr);
    return result;
  } catch (const AutomationError& error) {
    log.End(number, line, &error);
    throw;
  }
}

}  // namespace parvex::journal
