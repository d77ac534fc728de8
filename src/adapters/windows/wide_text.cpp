#include "adapters/windows/wide_text.h"

#include <cstdint>

namespace parvex::windows {
namespace {

constexpr char32_t kReplacement = 0xFFFD;

bool IsLeading(char32_t unit) { return unit >= 0xD800 && unit <= 0xDBFF; }
bool IsTrailing(char32_t unit) { return unit >= 0xDC00 && unit <= 0xDFFF; }

// The code point at `pos`, which moves behind it. Surrogates in three-byte form are let through.
char32_t NextCodePoint(std::string_view text, std::size_t& pos) {
  const auto lead = static_cast<unsigned char>(text[pos++]);
  if (lead < 0x80) {
    return lead;
  }
  const int following = lead >= 0xF0 && lead < 0xF5 ? 3 : lead >= 0xE0 ? 2 : lead >= 0xC2 ? 1 : 0;
  if (following == 0 || lead >= 0xF5) {
    return kReplacement;
  }
  char32_t code = lead & (0x3Fu >> following);
  std::size_t next = pos;
  for (int i = 0; i < following; ++i, ++next) {
    if (next >= text.size() || (static_cast<unsigned char>(text[next]) & 0xC0) != 0x80) {
      return kReplacement;
    }
    code = (code << 6) | (static_cast<unsigned char>(text[next]) & 0x3F);
  }
  constexpr char32_t kSmallest[] = {0, 0x80, 0x800, 0x10000};
  if (code < kSmallest[following] || code > 0x10FFFF) {
    return kReplacement;
  }
  pos = next;
  return code;
}

void AppendUtf8(std::string& text, char32_t code) {
  const auto put = [&text](char32_t byte) { text.push_back(static_cast<char>(byte)); };
  if (code < 0x80) {
    put(code);
  } else if (code < 0x800) {
    put(0xC0 | (code >> 6));
    put(0x80 | (code & 0x3F));
  } else if (code < 0x10000) {
    put(0xE0 | (code >> 12));
    put(0x80 | ((code >> 6) & 0x3F));
    put(0x80 | (code & 0x3F));
  } else {
    put(0xF0 | (code >> 18));
    put(0x80 | ((code >> 12) & 0x3F));
    put(0x80 | ((code >> 6) & 0x3F));
    put(0x80 | (code & 0x3F));
  }
}

}  // namespace

std::wstring Widen(std::string_view text) {
  std::wstring wide;
  wide.reserve(text.size());
  for (std::size_t pos = 0; pos < text.size();) {
    const char32_t code = NextCodePoint(text, pos);
    if (code < 0x10000) {
      wide.push_back(static_cast<wchar_t>(code));
    } else {
      wide.push_back(static_cast<wchar_t>(0xD800 + ((code - 0x10000) >> 10)));
      wide.push_back(static_cast<wchar_t>(0xDC00 + ((code - 0x10000) & 0x3FF)));
    }
  }
  return wide;
}

std::string Narrow(std::wstring_view text) {
  std::string narrow;
  narrow.reserve(text.size());
  for (std::size_t i = 0; i < text.size(); ++i) {
    char32_t code = static_cast<std::uint16_t>(text[i]);
    if (IsLeading(code) && i + 1 < text.size() && IsTrailing(static_cast<std::uint16_t>(text[i + 1]))) {
      code = 0x10000 + ((code - 0xD800) << 10) + (static_cast<std::uint16_t>(text[++i]) - 0xDC00);
    }
    AppendUtf8(narrow, code);
  }
  return narrow;
}

}  // namespace parvex::windows
