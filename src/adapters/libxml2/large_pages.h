#pragma once

#include <cstddef>

namespace parvex::xml {

inline constexpr std::size_t kLargePage = std::size_t{2} << 20;

/// Asks for large pages behind memory that is about to be filled: the system then clears it in few steps instead of one
/// for every 4 KB. Memory smaller than a large page, and systems without them, are left as they are.
void PreferLargePages(void* memory, std::size_t size) noexcept;

}  // namespace parvex::xml
