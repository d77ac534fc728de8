#pragma once

#include <string>
#include <string_view>

#include "seams/platform.h"

namespace parvex {

/// A string that the legacy application keeps under a key of its own: the registry's value (ReadRegistryValue), or,
/// under the key "SOFTWARE\Korvane\UI\" (exactly so), the value that UIKeys.txt has for the name. That key is never
/// looked up in the registry; its `fallback` is never given, and an error in reading the file is an empty text.
std::string ReadRegistryString(const Platform& platform, std::string_view key, std::string_view valueName,
                               std::string_view fallback);

}  // namespace parvex
