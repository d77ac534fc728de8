#pragma once

#include <string>

#include "replay/case_run.h"

namespace parvex::cli {

/// How a case ran, for people: whether it is reproduced, and if not the first differences.
std::string TextOfRun(const replay::RunResult& result);

/// The same in a few words, for a list.
std::string LineOfRun(const replay::RunResult& result);

}  // namespace parvex::cli
