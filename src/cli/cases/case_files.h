#pragma once

#include <string>

#include "recording/recorded_case.h"

namespace parvex::cli {

/// The files of a case as markup of a page: a table of their sizes before the call and at each step that left or found
/// them changed, and below it the texts among them, folded. Cost: linear in the case, but for the sorting of names.
std::string FilesTable(const recording::RecordedCase& read);

}  // namespace parvex::cli
