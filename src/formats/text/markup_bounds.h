#pragma once

#include <cstddef>
#include <string>
#include <string_view>

namespace parvex::xml {

// What the XML adapters of both platforms refuse in markup that comes from outside, alike. docs/bounds.md tells users.

/// Elements that are open at once. MSXML walks its trees on the stack of its host, which may be 1 MB; deeper markup
/// could take a script host down. Documents of the legacy application nest some ten deep.
inline constexpr std::size_t kDeepestElement = 1'000;

/// Why a text is refused that opens one element too many; the place in front of it is the end of that start tag.
inline std::string NestedTooDeeply() {
  return "elements are nested more deeply than " + std::to_string(kDeepestElement);
}

/// Bytes that expanded entities and attributes defaulted by a DOCTYPE may add to a document, all together. A defaulted
/// attribute counts as the markup that it stands for.
inline constexpr std::size_t kMostExpansion = 1'000'000;
inline constexpr std::size_t kSignsOfAttribute = 4;  ///< blank, =, two quotes

/// Bytes from "<!DOCTYPE" to its end. Parsers take a time that grows with the square of what it declares.
inline constexpr std::size_t kLargestDoctype = 32'768;

/// Attributes of one element, namespace declarations included; parsers compare each with each.
inline constexpr std::size_t kMostAttributes = 1'000;

/// Namespace declarations that hold at once, which parsers search for each prefix; and different namespaces of one
/// document.
inline constexpr std::size_t kMostDeclarations = 250;
inline constexpr std::size_t kMostDifferentNamespaces = 1'000;
inline constexpr std::size_t kLongestNamespace = 4'096;  ///< bytes of its name; it is compared at each element

/// Different names of one document: of elements, attributes, prefixes and instructions.
inline constexpr std::size_t kMostDifferentNames = 100'000;

/// What the tree of a text may take beside the text: so many times its bytes, and this much always. With the file, its
/// text, and the copy that is parsed, a document takes 16 times its bytes; those of the legacy application take 9.
inline constexpr std::size_t kTreeOfText = 13;
inline constexpr std::size_t kTreeAnyway = 32u << 20;

/// Why a text is refused that passes one of these.
inline std::string TooManyDeclarations() {
  return "more than " + std::to_string(kMostDeclarations) + " namespace declarations hold at once";
}
inline std::string TooManyNames() { return "more than " + std::to_string(kMostDifferentNames) + " different names"; }
inline std::string TooLargeTree() {
  return "the document's tree would take more than " + std::to_string(kTreeOfText) + " times the bytes of its text";
}

/// Why a text is refused before it is parsed, with line and column: its DOCTYPE is too large, or an element has too
/// many attributes. Empty when it is not. Of text that is no markup it is either. Cost: that of a look at each
/// few thousand bytes, and of reading the DOCTYPE.
std::string BeyondBounds(std::string_view text);

}  // namespace parvex::xml
