#pragma once

#include <cstdint>
#include <string_view>

namespace parvex::posix {

// Names of sections and keys without regard to the letter case of A to Z; every other byte counts as it stands.

/// Depends on a number that is drawn anew in every process: nobody can make a file whose names all fall into one place.
std::uint32_t HashIgnoringAsciiCase(std::string_view name, std::uint64_t salt);

bool EqualIgnoringAsciiCase(std::string_view a, std::string_view b);

}  // namespace parvex::posix
