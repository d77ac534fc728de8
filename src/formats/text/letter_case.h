#pragma once

#include <string>
#include <string_view>

namespace parvex {

/// The upper-cased form in which the platform compares and sorts names of files, keys and sections: unit by unit, with
/// the letters of Unicode. A letter that needs two units, and one whose upper case needs two, stays as it is.
std::string FoldName(std::string_view name);

}  // namespace parvex
