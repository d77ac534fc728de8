#pragma once

#include <string>
#include <string_view>

#include "formats/text/unicode.h"

namespace parvex::masking::test {

inline std::u32string CodesIn(std::string_view text) {
  std::u32string codes;
  for (std::size_t pos = 0; pos < text.size();) {
    codes.push_back(NextCodePoint(text, pos));
  }
  return codes;
}

inline std::string Utf8Of(std::u32string_view codes) {
  std::string text;
  for (const char32_t code : codes) {
    AppendUtf8(text, code);
  }
  return text;
}

}  // namespace parvex::masking::test
