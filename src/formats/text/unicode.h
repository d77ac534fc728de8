#pragma once

#include <cstddef>
#include <string>
#include <string_view>

namespace parvex {

// The one place that reads and writes UTF-8 and UTF-16.
//
// A text is cut into characters everywhere in the same way: a byte that belongs to no complete UTF-8 sequence is a
// character of its own; a complete sequence is one character, even where its code is none (a longer form than needed,
// or beyond U+10FFFF). What is no character reads as U+FFFD. Half of a surrogate pair has no UTF-8, but a sequence of
// three bytes in its shape; whoever must give every 16-bit unit back as it came keeps it in that shape.

inline constexpr char32_t kReplacementCharacter = 0xFFFD;

constexpr bool IsHighSurrogate(char32_t code) { return code >= 0xD800 && code < 0xDC00; }
constexpr bool IsLowSurrogate(char32_t code) { return code >= 0xDC00 && code < 0xE000; }
constexpr bool IsSurrogate(char32_t code) { return code >= 0xD800 && code < 0xE000; }

/// Whether half of a surrogate pair becomes U+FFFD or stays what it is.
enum class LoneSurrogates { Replaced, Kept };

struct Utf8Character {
  char32_t code;      ///< half of a surrogate pair is its own code; U+FFFD where the bytes are no character
  std::size_t bytes;  ///< how many bytes it takes, at least 1
  bool isCharacter;   ///< not so where the bytes are no character or half of a surrogate pair
};

/// The first character of a text that is not empty.
Utf8Character FirstCharacter(std::string_view text);

/// The code of the character that begins at `pos`, which is moved behind it.
char32_t NextCodePoint(std::string_view text, std::size_t& pos);

/// Appends the character's UTF-8; half of a surrogate pair in its shape of three bytes.
void AppendUtf8(std::string& text, char32_t code);
std::string Utf8Of(char32_t code);

/// The text in UTF-16, and back.
std::u16string ToUtf16(std::string_view text, LoneSurrogates lone = LoneSurrogates::Replaced);
std::string FromUtf16(std::u16string_view units, LoneSurrogates lone = LoneSurrogates::Replaced);

/// The same for another type of 16-bit units, wchar_t on Windows.
template <typename Unit>
std::basic_string<Unit> EncodeUtf16(std::string_view text, LoneSurrogates lone);
template <typename Unit>
std::string DecodeUtf16(std::basic_string_view<Unit> units, LoneSurrogates lone);

/// Whether a text is UTF-8 throughout, and what it is with U+FFFD in place of what is none.
bool IsWellFormed(std::string_view text);
std::string WellFormed(std::string_view text);

// ---- How it is done: inline, for a long text asks at every character. ----

inline Utf8Character FirstCharacter(std::string_view text) {
  constexpr Utf8Character kNone{kReplacementCharacter, 1, false};
  const auto byte = [&](std::size_t at) { return static_cast<unsigned char>(text[at]); };
  const auto goesOnAt = [&](std::size_t at) { return (byte(at) & 0xC0) == 0x80; };
  const auto low6 = [&](std::size_t at) { return byte(at) & 0x3Fu; };
  const auto lead = byte(0);
  if (lead < 0x80) {
    return {lead, 1, true};
  }
  if (lead < 0xE0) {
    const bool isWhole = lead >= 0xC2 && text.size() >= 2 && goesOnAt(1);
    return isWhole ? Utf8Character{(lead & 0x1Fu) << 6 | low6(1), 2, true} : kNone;
  }
  if (text.size() < 3 || !goesOnAt(1) || !goesOnAt(2)) {
    return kNone;
  }
  if (lead < 0xF0) {
    const char32_t code = (lead & 0x0Fu) << 12 | low6(1) << 6 | low6(2);
    return code < 0x800 ? Utf8Character{kReplacementCharacter, 3, false} : Utf8Character{code, 3, !IsSurrogate(code)};
  }
  if (lead > 0xF4 || text.size() < 4 || !goesOnAt(3)) {
    return kNone;
  }
  const char32_t code = (lead & 0x07u) << 18 | low6(1) << 12 | low6(2) << 6 | low6(3);
  const bool isCode = code >= 0x10000 && code <= 0x10FFFF;
  return {isCode ? code : kReplacementCharacter, 4, isCode};
}

inline char32_t NextCodePoint(std::string_view text, std::size_t& pos) {
  const Utf8Character character = FirstCharacter(text.substr(pos));
  pos += character.bytes;
  return character.code;
}

template <typename Unit>
std::basic_string<Unit> EncodeUtf16(std::string_view text, LoneSurrogates lone) {
  static_assert(sizeof(Unit) == 2);
  std::basic_string<Unit> units;
  units.reserve(text.size());
  for (std::size_t pos = 0; pos < text.size();) {
    const char32_t code = NextCodePoint(text, pos);
    if (code >= 0x10000) {
      units.push_back(static_cast<Unit>(0xD7C0 + (code >> 10)));
      units.push_back(static_cast<Unit>(0xDC00 + (code & 0x3FF)));
    } else {
      const bool isReplaced = lone == LoneSurrogates::Replaced && IsSurrogate(code);
      units.push_back(static_cast<Unit>(isReplaced ? kReplacementCharacter : code));
    }
  }
  return units;
}

template <typename Unit>
std::string DecodeUtf16(std::basic_string_view<Unit> units, LoneSurrogates lone) {
  static_assert(sizeof(Unit) == 2);
  std::string text;
  text.reserve(units.size());
  for (std::size_t i = 0; i < units.size(); ++i) {
    char32_t code = static_cast<char16_t>(units[i]);
    if (IsHighSurrogate(code) && i + 1 < units.size() && IsLowSurrogate(static_cast<char16_t>(units[i + 1]))) {
      code = 0x10000 + ((code & 0x3FF) << 10) + (static_cast<char16_t>(units[++i]) & 0x3FF);
    } else if (lone == LoneSurrogates::Replaced && IsSurrogate(code)) {
      code = kReplacementCharacter;
    }
    AppendUtf8(text, code);
  }
  return text;
}

}  // namespace parvex
