#pragma once

#include <string>
#include <string_view>

namespace parvex {

/// Appends a text as content of an element or in the double quotes of an attribute.
inline void AppendEscapedMarkup(std::string& markup, std::string_view text) {
  for (const char c : text) {
    switch (c) {
      case '&':
        markup += "&amp;";
        break;
      case '<':
        markup += "&lt;";
        break;
      case '>':
        markup += "&gt;";
        break;
      case '"':
        markup += "&quot;";
        break;
      default:
        markup += c;
    }
  }
}

inline std::string EscapedMarkup(std::string_view text) {
  std::string markup;
  AppendEscapedMarkup(markup, text);
  return markup;
}

}  // namespace parvex
