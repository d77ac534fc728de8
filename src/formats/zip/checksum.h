#pragma once

#include <cstdint>
#include <string_view>

namespace parvex {

/// The checksum that archives keep of an entry's bytes; `before` is that of the bytes in front of them.
std::uint32_t ChecksumOf(std::string_view bytes, std::uint32_t before = 0);

}  // namespace parvex
