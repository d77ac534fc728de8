#pragma once

#include <cstddef>
#include <string_view>

namespace parvex::xml {

// The tags of markup, found without parsing it: for bounds that are checked before a parser sees the text. Of markup
// that does not parse they are something.

struct MarkupTag {
  enum class Kind { Start, Empty, End };
  Kind kind;
  std::size_t begin;  ///< offset of its "<"
  std::size_t end;    ///< of its ">" outside of quotes; the end of the text when there is none
};

class MarkupTags {
 public:
  /// The tags behind the DOCTYPE, if there is one. Comments, sections and instructions hold none.
  explicit MarkupTags(std::string_view text);

  /// Gives the next one. False when there is none.
  bool Next(MarkupTag& tag);

 private:
  std::string_view text_;
  std::size_t at_;
};

/// Where a tag or declaration that begins at `from` ends: at its ">" outside of quotes, or at the end of the text.
std::size_t EndOfTag(std::string_view text, std::size_t from);

/// Where a DOCTYPE stands that the text begins with, but for a byte order mark, comments
/// and instructions; npos when it has none.
std::size_t DoctypeIn(std::string_view text);
/// The offset behind the DOCTYPE that begins at `from`; npos when it has no end.
std::size_t EndOfDoctype(std::string_view text, std::size_t from);

/// The name of a start or empty tag of the text.
std::string_view NameIn(std::string_view text, const MarkupTag& tag);

/// Calls `visit` with the name of each attribute of a tag of the text.
template <class Visit>
void ForEachAttribute(std::string_view text, const MarkupTag& tag, Visit visit) {
  constexpr std::string_view kBlanks = " \t\r\n";
  const std::string_view inside = text.substr(tag.begin, tag.end - tag.begin);
  for (std::size_t at = inside.find_first_of(kBlanks); at < inside.size();) {
    const std::size_t begin = inside.find_first_not_of(kBlanks, at);
    const std::size_t sign = inside.find('=', at);
    const std::size_t quote = inside.find_first_of("\"'", sign);
    if (quote == std::string_view::npos) {
      return;
    }
    visit(inside.substr(begin, inside.find_first_of(" \t\r\n=", begin) - begin));
    const std::size_t close = inside.find(inside[quote], quote + 1);
    at = close == std::string_view::npos ? close : close + 1;
  }
}

}  // namespace parvex::xml
