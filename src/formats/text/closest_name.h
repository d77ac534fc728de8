#pragma once

#include <cstddef>
#include <span>
#include <string_view>

namespace parvex {

/// How many characters have to be put in, taken out, replaced or swapped with their neighbour to make one text of the
/// other. Bytes count as characters, letter case of ASCII letters does not.
std::size_t EditDistance(std::string_view one, std::string_view other);

/// The name that a misspelt one is likely to be: the nearest, the first of several as near. Empty when none is within a
/// third of the misspelt name's length.
std::string_view ClosestName(std::string_view misspelt, std::span<const std::string_view> names);

}  // namespace parvex
