#pragma once

#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

namespace parvex::cli {

/// An element with the place where its start tag begins.
struct PlacedElement {
  std::string name;
  std::size_t offset = 0;
  std::string text = {};  ///< its own, entities resolved, without outer blanks
  std::vector<PlacedElement> children = {};

  /// The first child of that name; null when there is none.
  const PlacedElement* Child(std::string_view childName) const;
  /// The first element of that name below, in document order; null when there is none.
  const PlacedElement* Descendant(std::string_view descendantName) const;
  /// Whether it has neither text nor elements.
  bool IsEmpty() const { return text.empty() && children.empty(); }
};

/// The root of a document that is known to be well-formed, in UTF-8 or another encoding that has ASCII in it. What is
/// no such document gives something, and an element without name when there is no root.
PlacedElement PlacedRoot(std::string_view markup);

}  // namespace parvex::cli
