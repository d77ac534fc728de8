#include <gtest/gtest.h>

#include <functional>
#include <string>
#include <utility>
#include <vector>

#include "seams/xml.h"
#include "tests/support/raised_by.h"

namespace parvex::xml {
namespace {

// Number and text, the same over every component.
TEST(XmlRefusals, EachHasItsNumberAndItsText) {
  const Document document = Document::Parse("<r k='v'>t<b><c/></b></r>");
  const Node root = document.Root();
  const Node b = document.First("r/b");
  const Node attribute = document.First("r/@k");
  const Node text = root.FirstChild();
  const std::vector<std::pair<std::function<void()>, std::string>> rows = {
      {[] { Node().SetText("x"); }, "91 SetText was asked of a missing node"},
      {[&] { root.Append(Node()); }, "91 Append was asked of a missing node"},
      {[] { Document().Bytes(); }, "91 Bytes was asked of a missing node"},
      {[&] { root.SetText("a\x01"); }, "5 the text for r holds what XML cannot carry: the byte value 1 at byte 2"},
      {[&] { root.SetAttribute("k", "\xFF"); },
       "5 the text for the attribute \"k\" of r holds what XML cannot carry: the byte value 255 at byte 1"},
      {[&] { document.CreateCData("abc\x02"); },
       "5 the text for a CDATA section holds what XML cannot carry: the byte value 2 at byte 4"},
      {[&] { document.AsNode().SetText("x"); }, "5 the text of #document cannot be set"},
      {[&] { root.SetAttribute("1a", "x"); }, "5 \"1a\" cannot be the name of an attribute of r"},
      {[&] { root.SetAttribute("p:a", "x"); }, "5 the prefix of the attribute \"p:a\" is not declared at r"},
      {[&] { root.SetAttribute("xmlns:p", "x"); }, "5 the namespace declaration \"xmlns:p\" cannot be set at r"},
      {[&] { text.SetAttribute("a", "x"); }, "5 the node #text cannot have the attribute \"a\""},
      {[&] { document.CreateElement("a b"); }, "5 \"a b\" cannot be the name of an element"},
      {[&] { document.First("r["); }, "5 the XPath expression \"r[\" cannot select nodes"},
      {[&] { document.All("1 + 1"); }, "5 the XPath expression \"1 + 1\" cannot select nodes"},
      {[&] { b.Append(root); }, "5 the node r cannot be appended to b: the one is a part of the other"},
      {[&] { b.Append(attribute); },
       "5 the node k cannot be appended to b: only elements, texts, CDATA sections, comments and processing "
       "instructions can be"},
      {[&] { text.Append(b); }, "5 the node b cannot be appended to #text: only elements and documents have children"},
      {[&] { document.AsNode().Append(document.CreateElement("x")); },
       "5 the node x cannot be appended to #document: it has the root r"},
      {[&] { document.AsNode().Append(document.CreateCData("x")); },
       "5 the node #cdata-section cannot be appended to #document: text stands in elements only"},
      {[&] { attribute.Remove(); }, "5 the node k cannot be removed"},
  };
  for (const auto& [action, expected] : rows) {
    EXPECT_EQ(test::ErrorIn(action), expected);
  }
}

}  // namespace
}  // namespace parvex::xml
