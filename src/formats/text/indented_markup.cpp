#include "formats/text/indented_markup.h"

#include <algorithm>

#include "formats/text/markup_tags.h"

namespace parvex {
namespace {

enum class Kind { Start, End, Empty, Text, Other };

struct Piece {
  Kind kind;
  std::string_view text;
};

std::size_t BehindNext(std::string_view markup, std::string_view mark) {
  const std::size_t found = markup.find(mark);
  return found == std::string_view::npos ? markup.size() : found + mark.size();
}

// The piece that the markup, which is not empty, begins with.
Piece FirstPiece(std::string_view markup) {
  const auto piece = [markup](Kind kind, std::size_t length) { return Piece{kind, markup.substr(0, length)}; };
  if (markup.front() != '<') {
    return piece(Kind::Text, std::min(markup.find('<'), markup.size()));
  }
  if (markup.starts_with("<![CDATA[")) {
    return piece(Kind::Text, BehindNext(markup, "]]>"));
  }
  if (markup.starts_with("<!--")) {
    return piece(Kind::Other, BehindNext(markup, "-->"));
  }
  if (markup.starts_with("<?")) {
    return piece(Kind::Other, BehindNext(markup, "?>"));
  }
  const std::size_t end = std::min(xml::EndOfTag(markup, 0) + 1, markup.size());
  const bool isEmpty = markup.substr(0, end).ends_with("/>");
  return piece(markup.starts_with("</") ? Kind::End : isEmpty ? Kind::Empty : Kind::Start, end);
}

bool IsBlank(std::string_view text) { return text.find_first_not_of(" \t\r\n") == std::string_view::npos; }

}  // namespace

IndentedMarkup Indented(std::string_view markup, std::size_t most) {
  IndentedMarkup indented;
  std::size_t depth = 0;
  Kind last = Kind::Other;
  while (!markup.empty()) {
    const Piece piece = FirstPiece(markup);
    if (piece.kind == Kind::Text && IsBlank(piece.text)) {
      markup.remove_prefix(piece.text.size());
      continue;
    }
    if (indented.text.size() >= most) {
      indented.isCut = true;
      return indented;
    }
    depth -= piece.kind == Kind::End && depth > 0 ? 1 : 0;
    const bool stays =
        piece.kind == Kind::Text || last == Kind::Text || (piece.kind == Kind::End && last == Kind::Start);
    if (!stays && !indented.text.empty()) {
      indented.text += '\n';
      indented.text.append(2 * depth, ' ');
    }
    indented.text += piece.text;
    depth += piece.kind == Kind::Start ? 1 : 0;
    last = piece.kind;
    markup.remove_prefix(piece.text.size());
  }
  return indented;
}

}  // namespace parvex
