#pragma once

#include <string>

#include "seams/xml.h"

namespace parvex::test {

/// Whether two handles lead to one element: what is written through one is read through the other. Leaves an attribute
/// "mark" on it.
inline bool IsSame(const xml::Node& a, const xml::Node& b) {
  static int marks = 0;
  const std::string mark = std::to_string(++marks);
  a.SetAttribute("mark", mark);
  return b.Attribute("mark") == mark;
}

/// The same of two handles on documents that have a root.
inline bool IsSame(const xml::Document& a, const xml::Document& b) { return IsSame(a.Root(), b.Root()); }

}  // namespace parvex::test
