#pragma once

#include <optional>
#include <string>
#include <vector>

#include "cli/quote/quote.h"

namespace parvex::cli {

/// One thing in which two quotes differ.
struct Difference {
  std::string where;                  ///< the tag, unit or component, long names shortened; empty for the project
  std::string what;                   ///< the value that differs; empty for a whole tag, unit or component
  std::optional<std::string> before;  ///< nothing when it was added
  std::optional<std::string> after;   ///< nothing when it was removed
};

/// What was changed between two quotes. Tags are the same that have the same tag id, or else the same mark-for and
/// PDSG; units that have the same part number, or else the same place; components that have the same type and part
/// number. Their order is not compared.
std::vector<Difference> Compare(const Quote& before, const Quote& after);

}  // namespace parvex::cli
