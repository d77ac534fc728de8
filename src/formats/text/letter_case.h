#pragma once

#include <string>
#include <string_view>

namespace parvex {

/// The upper-cased form in which the platform compares and sorts names of files, keys and sections: unit by unit, with
/// the letters of Unicode. A letter that needs two units, and one that has no capital of one unit for itself (ß, the
/// dotless i, the long s), stays as it is. No language counts.
std::string FoldName(std::string_view name);

/// Whether two names are one to the platform.
bool IsSameName(std::string_view a, std::string_view b);

/// The capital of a UTF-16 unit by our own table, which says what Windows does; the unit itself when it has none.
char16_t CapitalOf(char16_t unit);

}  // namespace parvex
