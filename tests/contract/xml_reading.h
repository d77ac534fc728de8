#pragma once

#include <gtest/gtest.h>

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>

#include "seams/automation_error.h"
#include "seams/xml.h"

// How the suites of the XML seam, which hold what every adapter promises, look at documents. Adapters may break lines
// and indent in markup as they like, so documents are compared as trees.

namespace parvex::test {

using xml::Document;
using xml::Node;

inline Document Parsed(std::string_view text) {
  Document document = Document::Parse(text);
  EXPECT_EQ(document.ParseError(), "") << text;
  return document;
}

// A node as name(attributes)[children], texts in quotes.
inline std::string Outline(const Node& node) {
  if (node.Name() == "#text" || node.Name() == "#cdata-section" || node.Name() == "#comment") {
    return node.Name() + "'" + node.Text() + "'";
  }
  std::string outline = node.Name();
  if (node.IsElement()) {
    for (const Node& attribute : node.All("@*")) {
      outline += "(" + attribute.Name() + "=" + attribute.Text() + ")";
    }
  }
  outline += "[";
  for (Node child = node.FirstChild(); child; child = child.NextSibling()) {
    outline += Outline(child);
  }
  return outline + "]";
}

// The root of a document after its markup went through the parser again.
inline Node Reparsed(const Document& document) {
  const Document again = Parsed(document.Xml());
  return again.Root();
}

inline constexpr auto kObjectNotSet = static_cast<std::uint16_t>(RuntimeError::ObjectNotSet);
inline constexpr auto kInvalidCall = static_cast<std::uint16_t>(RuntimeError::InvalidCall);

inline std::size_t CountOf(std::string_view text, std::string_view what) {
  std::size_t count = 0;
  for (std::size_t hit = text.find(what); hit != std::string_view::npos; hit = text.find(what, hit + what.size())) {
    ++count;
  }
  return count;
}

}  // namespace parvex::test
