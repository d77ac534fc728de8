#include "adapters/libxml2/objection.h"

#include <climits>

#include "formats/text/markup_bounds.h"
#include "formats/text/xml_characters.h"

namespace parvex::xml {

std::string At(long line, long column) {
  return "line " + std::to_string(line) + ", column " + std::to_string(column) + ": ";
}

std::string Objection(std::string_view text) {
  if (text.empty()) {
    return At(1, 1) + "Document is empty";
  }
  if (text.size() >= INT_MAX) {
    return "the text is longer than 2 GB";
  }
  if (const std::size_t bad = FindForbidden(text); bad != std::string_view::npos) {
    return PlaceOf(text, bad) + ": not a character of XML, or not in the encoding";
  }
  if (std::string beyond = BeyondBounds(text); !beyond.empty()) {
    return beyond;
  }
  // The parser guesses at encodings from the first bytes. A text that begins like this leaves it nothing to guess.
  if (text[0] != '<' && !IsBlank(text[0])) {
    return At(1, 1) + "the document does not begin with '<'";
  }
  return "";
}

}  // namespace parvex::xml
