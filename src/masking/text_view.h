#pragma once

#include <cstdint>
#include <map>
#include <span>
#include <string>
#include <string_view>
#include <vector>

namespace parvex::masking {

/// A character as it is meant, and where and how it is written.
struct Character {
  enum class Form : std::uint8_t {
    Plain,
    Named,    ///< &lt; and the like
    Decimal,  ///< &#252;
    Hex,      ///< &#xFC;
    Rtf,      ///< \'fc, a byte of Windows-1252
    RtfCode,  ///< \u252?
    Opaque    ///< something that is replaced as a whole
  };
  char32_t code = 0;
  std::uint32_t at = 0;  ///< in the written text
  std::uint32_t length = 0;
  Form form = Form::Plain;
};

/// What a part of a written text means; of a text inside a text each character still knows where it is written.
using View = std::vector<Character>;
using Part = std::span<const Character>;

/// The characters of UTF-8.
View Characters(std::string_view text);
/// The same text with its references (&amp; &#252;) resolved once. Of a reference to a reference only the inner one is
/// left, at the place of the whole.
View Resolved(Part text);
/// The text of a rich text document, without its control words.
View RichText(Part text);

std::u32string CodesOf(Part text);
std::string Utf8(Part text);
bool StartsWith(Part text, std::u32string_view what);
/// Where the character stands first; the length of the text where it does not.
std::size_t Find(Part text, char32_t code);
/// Without blanks and line ends around it.
Part Trimmed(Part text);
/// The same, without a pair of quotes around what is left.
Part Unquoted(Part value);

/// Changes to a written text, each made once: what is changed already stays so.
class Changes {
 public:
  explicit Changes(std::string_view written) : written_(written) {}

  bool IsChanged(const Character& character) const { return made_.contains(character.at); }
  /// Another character in the same form.
  void Put(const Character& character, char32_t code);
  void Put(std::uint32_t at, std::uint32_t length, std::string text);
  std::string Made() const;

 private:
  struct Change {
    std::uint32_t length;
    std::string text;
  };
  std::string_view written_;
  std::map<std::uint32_t, Change> made_;
};

}  // namespace parvex::masking
