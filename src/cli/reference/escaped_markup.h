#pragma once

#include <string>
#include <string_view>

namespace parvex::cli {

/// A text as content of an element or in the double quotes of an attribute.
inline std::string EscapedMarkup(std::string_view text) {
  std::string escaped;
  for (const char c : text) {
    switch (c) {
      case '&':
        escaped += "&amp;";
        break;
      case '<':
        escaped += "&lt;";
        break;
      case '>':
        escaped += "&gt;";
        break;
      case '"':
        escaped += "&quot;";
        break;
      default:
        escaped += c;
    }
  }
  return escaped;
}

}  // namespace parvex::cli
