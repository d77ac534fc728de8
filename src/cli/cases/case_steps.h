#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "recording/recorded_case.h"

namespace parvex::cli {

// A case as it is told. Whatever stands in it is somebody else's: a value of a wrong type reads as none.

/// The text that an object has under a key, a value of another type as JSON; empty for none and for null.
std::string TextIn(const recording::Json& object, const char* key);

/// A text as far as it fits into a line of a terminal.
std::string Shortened(const std::string& text);

/// Microseconds as seconds, "?" for none.
std::string SecondsOf(const std::optional<std::uint64_t>& microseconds);
/// What an object has under a key, when it is a number of microseconds.
std::optional<std::uint64_t> MicrosecondsIn(const recording::Json& object, const char* key);

/// "error 0x800A0005, SOURCE: DESCRIPTION" of the object's `error`; empty for none.
std::string ErrorIn(const recording::Json& object);

/// What a line of the journal says: everything but what every line has.
std::string SayingOf(const recording::Json& line);

/// A step of a case: both of its lines, or the only one. They live as long as the case.
struct CaseStep {
  std::uint64_t number = 0;
  const recording::Json* first = nullptr;
  const recording::Json* last = nullptr;  ///< null when the step has one line
  std::optional<std::uint64_t> begun;     ///< of a program's end that of its start
  std::optional<std::uint64_t> ended;     ///< none when it never came back
  std::string failure;                    ///< empty for none
};

/// The steps in the order in which they began. Cost: linear in the journal.
std::vector<CaseStep> StepsOf(const recording::RecordedCase& read);

/// What became of the call as a whole: "reply", or more words on what else.
std::string OutcomeOf(const recording::RecordedCase& read);

}  // namespace parvex::cli
