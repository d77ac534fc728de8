#pragma once

#include <string>

#include "recording/recorded_case.h"

namespace parvex::cli {

/// A case as one HTML page that needs nothing beside it: what failed where, what was asked and answered, the machine,
/// a time line of the steps with their details folded, the files before and after, and what is missing. Long texts are
/// cut. Cost: linear in the case.
std::string CasePage(const recording::RecordedCase& read, const std::string& fileName);

}  // namespace parvex::cli
