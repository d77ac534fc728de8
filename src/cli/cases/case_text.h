#pragma once

#include <string>

#include "recording/recorded_case.h"

namespace parvex::cli {

/// A case for people: what was asked, what happened step by step with times, what came back and what failed where.
std::string TextOfCase(const recording::RecordedCase& read);

/// The same as JSON: the facts of case.json with `finished`, `commandDocument`, `reply`, `steps` and `files`.
std::string JsonOfCase(const recording::RecordedCase& read);

/// One line on a case, for a list.
std::string LineOfCase(const recording::RecordedCase& read);

/// The files that a case holds, with their sizes.
std::string FilesOfCase(const recording::RecordedCase& read);

}  // namespace parvex::cli
