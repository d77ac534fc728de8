#pragma once

#include <cstdint>
#include <span>
#include <string>
#include <string_view>
#include <unordered_map>

namespace parvex::masking {

/// A secret of 128 bits, made anew for each run.
struct Key {
  std::uint64_t low = 0;
  std::uint64_t high = 0;
};

/// Puts other letters and digits in the place of those of a text. A letter becomes another one of its kind and case, a
/// digit another digit, everything else stays; so a text keeps its length in characters, in UTF-8, in UTF-16 and in the
/// code page.
///
/// What a character becomes depends on the key and on the letters and digits between it and the nearest blank or mark
/// in front, letter case ignored. So the same word always becomes the same other word, words that differ stay
/// different, and no letter or digit of a word stays what it was. Without the key nothing of it can be computed.
class Letters {
 public:
  explicit Letters(const Key& key) : key_(key) {}

  /// Of whole words.
  void Mask(std::span<char32_t> text);
  /// Of the numbers in a text: leading and trailing zeros and the sign stay, so that a number of another value keeps
  /// its form, and two ways to write one number stay two ways to write one number. Letters stay.
  void MaskNumbers(std::span<char32_t> text);

 private:
  char32_t Other(char32_t character, std::u32string_view alphabet, std::uint64_t before);
  std::uint64_t After(std::uint64_t before, char32_t character) const;
  void MaskNumber(std::span<char32_t> number);

  Key key_;
  std::unordered_map<std::uint64_t, std::u32string> orders_;  ///< of an alphabet, by what stands in front
};

/// Whether Mask puts another character in its place.
bool IsMasked(char32_t character);
/// A letter of a script of which Mask knows no others.
bool IsUnknownLetter(char32_t character);
bool IsDigit(char32_t character);
/// As letter case is ignored here: every letter that Mask knows in lower case.
char32_t Lowered(char32_t character);

}  // namespace parvex::masking
