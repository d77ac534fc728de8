#pragma once

#include <functional>
#include <string>

#include "masking/text_view.h"

namespace parvex::masking {

/// A text or a value of an attribute in markup, and where it stands. Names are in upper case, without prefix.
struct MarkupPart {
  Part text;
  bool isLiteral = false;  ///< a CDATA section, comment or instruction, in which nothing is a reference
  std::string element;
  std::string attribute;  ///< empty for text
  std::string parent;     ///< the element around `element`
  /// What names the element from beside it: the text of the NAME that is its sibling, or the attribute "name" of its
  /// parent.
  std::string named;
};

/// Whether a text looks like markup, whole or a piece.
bool LooksLikeMarkup(Part text);

/// Goes through the texts and attributes of markup, of any piece of it: nothing is an error here. `takeName` gets the
/// names of elements and attributes.
void ForEachPart(Part markup, const std::function<void(const MarkupPart&)>& take,
                 const std::function<void(std::string)>& takeName);

}  // namespace parvex::masking
