#pragma once

#include <cstddef>
#include <optional>
#include <string_view>

namespace parvex::journal {

/// Where two texts begin to differ: offsets in bytes of the first piece of markup or text that is another one.
struct XmlDifference {
  std::size_t expectedAt = 0;
  std::size_t actualAt = 0;

  bool operator==(const XmlDifference&) const = default;
};

/// Compares two texts in UTF-8 as XML; nothing when they say the same. These are layout, and make no difference:
///
/// - a byte order mark, the declaration, and white space outside of the root element;
/// - quotes, white space and order of attributes; `<A/>` or `<A></A>`;
/// - CR LF or LF; a character, its reference, or a CDATA section around it;
/// - text between two pieces of markup that is white space only, but where xml:space="preserve" is in force, and but
///   between the start tag and the end tag of one element, which may hold a blank as its value;
/// - all this in a text that is a document itself.
///
/// All other text counts with every blank, and so do comments, processing instructions and prefixes. Where
/// xml::Document cannot parse either text, or it has a document type, both are compared byte by byte. Cost: linear in
/// both texts.
std::optional<XmlDifference> FirstXmlDifference(std::string_view expected, std::string_view actual);

}  // namespace parvex::journal
