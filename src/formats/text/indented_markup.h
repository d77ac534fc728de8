#pragma once

#include <cstddef>
#include <string>
#include <string_view>

namespace parvex {

struct IndentedMarkup {
  std::string text;
  bool isCut = false;  ///< what did not fit is missing at the end
};

/// Markup for people to read: each element on a line of its own, two blanks deeper than the one around it. An element
/// that holds nothing but a text stays on one line; text, comments and CDATA sections stand as they are. White space
/// between two pieces of markup is taken for layout.
///
/// `markup` is well-formed (anything else gives some text, too) and has no DOCTYPE with declarations. The text ends
/// with the piece that brings it to `most` bytes or more; that piece itself, and its indent, are not cut.
IndentedMarkup Indented(std::string_view markup, std::size_t most);

}  // namespace parvex
