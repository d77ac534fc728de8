#pragma once

#include <string>
#include <string_view>

#include "seams/platform.h"

namespace parvex {

/// A string value under the local-machine hive as the legacy application's reader gives it: `fallback` when there is
/// none or it is longer than 254 bytes in the ANSI code page. When looking ends with an error the result is empty,
/// deliberately: the reader traps its errors before it has put anything into it.
std::string ReadRegistryValue(const Platform& platform, std::string_view key, std::string_view valueName,
                              std::string_view fallback);

}  // namespace parvex
