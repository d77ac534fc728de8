#pragma once

#include <optional>
#include <string>
#include <string_view>

namespace parvex {

// Texts as the bytes of a file: which encoding a byte order mark tells, and the way there and back.

/// The encoding that a byte order mark in front tells; what bytes without a mark are is told elsewhere.
enum class TextEncoding { Unmarked, Utf8, Utf16Little, Utf16Big };

TextEncoding EncodingOf(std::string_view bytes);
/// Empty for Unmarked.
std::string_view MarkOf(TextEncoding encoding);

constexpr bool IsUtf16(TextEncoding encoding) {
  return encoding == TextEncoding::Utf16Little || encoding == TextEncoding::Utf16Big;
}

/// The units that bytes without a mark stand for, and back, in one of the two byte orders. An odd byte at the end is no
/// unit.
std::u16string UnitsOf(std::string_view bytes, TextEncoding byteOrder);
std::string BytesOf(std::u16string_view units, TextEncoding byteOrder);

/// The text of bytes that begin with a mark; nothing when none does. UTF-8 is taken as it stands, well-formed or not;
/// half of a surrogate pair in UTF-16 becomes U+FFFD.
std::optional<std::string> MarkedText(std::string_view bytes);

/// The bytes of a text, the mark in front.
std::string WithMark(std::string_view text, TextEncoding encoding);

}  // namespace parvex
