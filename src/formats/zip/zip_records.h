#pragma once

#include <cstdint>

namespace parvex::zip {

// Values that reader and writer of the archive format share.

// The method of an entry.
constexpr std::uint16_t kStored = 0;
constexpr std::uint16_t kDeflated = 8;

// A flag of an entry; without it names are in the code page of whoever packed it.
constexpr std::uint16_t kNameIsUtf8 = 0x0800;

}  // namespace parvex::zip
