#pragma once

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

#include "formats/ini/profile_names.h"
#include "formats/text/encoded_text.h"
#include "seams/code_page.h"

namespace parvex::ini {

// The text of private profile (ini) files; docs/private-profile.md describes the format in prose.

/// At most `mostBytes` of a text in the code page, without half of a character.
std::string CutToAnsi(std::string_view text, std::size_t mostBytes, CodePage& codePage);

/// A file's bytes, and the text in them. Pieces of the text are ANSI bytes as the file has them, or UTF-8: where it has
/// a byte order mark, and where a byte may be half of a character.
class ProfileText {
 public:
  ProfileText(std::string bytes, CodePage& codePage);

  const std::string& Bytes() const { return bytes_; }
  /// A file without a byte order mark is in the ANSI code page.
  TextEncoding Encoding() const { return encoding_; }
  /// Everything behind the byte order mark.
  std::string_view Text() const;

  /// A piece as the ANSI functions hand it out: at most `mostBytes` of its bytes in the code page.
  std::string Read(std::string_view piece, std::size_t mostBytes) const;

  /// The piece that ANSI bytes would be in this file.
  std::string Piece(std::string_view ansi) const;

  // Two pieces as names of sections or keys: letter case does not count, that of letters beyond ASCII neither.
  bool SameName(std::string_view a, std::string_view b) const;
  /// Equal for names that are the same.
  std::uint32_t HashOfName(std::string_view name) const;

  /// The file's bytes with `value` set; nothing when the file has exactly that value already. Every other line stays as
  /// it is. The three texts are ANSI bytes without NUL; outer blanks of the names and leading ones of the value go.
  std::optional<std::string> WithValue(std::string_view section, std::string_view key, std::string_view value) const;

 private:
  std::string Folded(std::string_view name) const;
  std::size_t PlaceInBytes(std::size_t placeInText) const;
  std::string Splice(std::size_t begin, std::size_t end, std::string_view piece) const;

  CodePage& codePage_;
  std::string bytes_;
  TextEncoding encoding_;
  bool isAnsi_ = false;       // pieces are ANSI bytes
  bool isConverted_ = false;  // the text is
  std::string converted_;     // this
  std::uint64_t seed_ = NameHashSeed();
};

/// One line of a profile text: where its first character that is no blank stands, where the last one ends, and where
/// the next line begins. A line ends with CR, LF or both.
struct ProfileLine {
  std::size_t begin;
  std::size_t end;
  std::size_t next;

  bool IsBlank() const { return begin == end; }
};

/// The line that begins at `pos`.
ProfileLine ProfileLineAt(std::string_view text, std::size_t pos);

/// The name in a section's header, nothing when the line (without outer blanks) is none. What stands behind the last
/// "]" is not looked at; without any, the line is a key's.
std::optional<std::string_view> SectionName(std::string_view line);

/// The name of a key's line, and its value as it stands, quotes included; no value without a "=".
std::string_view KeyName(std::string_view line);
std::optional<std::string_view> KeyValue(std::string_view line);

/// White space, and the ^Z that ends a file of old.
inline bool IsProfileBlank(char c) { return c == ' ' || (c >= '\t' && c <= '\r') || c == '\x1A'; }
/// What ends a line, alone or both together.
inline bool IsBreak(char c) { return c == '\r' || c == '\n'; }
/// Without outer blanks.
std::string_view TrimProfileBlanks(std::string_view text);
/// The part of a text before its first NUL, which ends it for the platform.
std::string_view UpToNul(std::string_view text);
/// Without one pair of single or double quotes around it.
std::string_view WithoutQuotes(std::string_view text);

inline bool IsAsciiText(std::string_view text) {
  return std::all_of(text.begin(), text.end(), [](char c) { return static_cast<unsigned char>(c) < 0x80; });
}

}  // namespace parvex::ini
