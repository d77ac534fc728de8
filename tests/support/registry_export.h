#pragma once

#include <string>
#include <string_view>

#include "formats/text/unicode.h"

namespace parvex::test {

// Registry texts begin with these: of the old editor, and of the new one in UTF-8. Values that follow are the key K's.
inline const std::string kHeader4 = "REGEDIT4\r\n\r\n[HKEY_LOCAL_MACHINE\\K]\r\n";
inline const std::string kHeader5 =
    "\xEF\xBB\xBFWindows Registry Editor Version 5.00\r\n\r\n[HKEY_LOCAL_MACHINE\\K]\r\n";

inline std::string Utf16LittleEndian(std::string_view text) {
  std::string bytes = "\xFF\xFE";
  for (const char16_t unit : ToUtf16(text)) {
    bytes.push_back(static_cast<char>(unit & 0xFF));
    bytes.push_back(static_cast<char>(unit >> 8));
  }
  return bytes;
}

}  // namespace parvex::test
