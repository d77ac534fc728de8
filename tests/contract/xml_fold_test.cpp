#include <gtest/gtest.h>

#include <string>

#include "seams/xml.h"
#include "tests/contract/xml_reading.h"
#include "tests/support/raised_by.h"

// What Fold promises of every adapter: nothing changes that can be seen.

namespace parvex {
namespace {

using test::kObjectNotSet;
using test::Outline;
using test::RaisedBy;
using xml::AppendElement;
using xml::Document;
using xml::Node;

// <r><c><COMPONENT PRICE="1.50"><DESCRIPTION>x &amp; y</DESCRIPTION><LIST/></COMPONENT></c></r>, which nobody has
// searched.
Document Quote() {
  const Document document = Document::New();
  const Node content = AppendElement(document.Append(document.CreateElement("r")), "c");
  const Node component = AppendElement(content, "COMPONENT");
  component.SetAttribute("PRICE", "1.50");
  AppendElement(component, "DESCRIPTION", "x & y");
  AppendElement(component, "LIST");
  return document;
}

TEST(XmlFold, LeavesTheContentAsItIs) {
  const Document folded = Quote();
  folded.Root().FirstChild().Fold();
  EXPECT_EQ(Outline(folded.Root()), Outline(Quote().Root()));
}

TEST(XmlFold, LeavesTheMarkupAsItIs) {
  const Document folded = Quote();
  folded.Root().FirstChild().Fold();
  EXPECT_EQ(folded.Xml(), Quote().Xml());
  EXPECT_EQ(folded.Root().FirstChild().Xml(), Quote().Root().FirstChild().Xml());
}

TEST(XmlFold, MayBeFollowedByAnAppend) {
  const Document folded = Quote();
  const Node content = folded.Root().FirstChild();
  content.Fold();
  AppendElement(content, "z", "last");
  EXPECT_EQ(content.FirstChild().Name(), "COMPONENT");
  EXPECT_EQ(content.FirstChild().NextSibling().Text(), "last");
}

TEST(XmlFold, KeepsHandlesBelow) {
  const Document document = Quote();
  const Node content = document.Root().FirstChild();
  const Node description = content.Child("COMPONENT").Child("DESCRIPTION");
  content.Fold();
  description.SetText("new");
  EXPECT_EQ(description.Parent().Parent().Name(), "c");
  EXPECT_EQ(content.Descendant("DESCRIPTION").Text(), "new");
}

TEST(XmlFold, OfANullNodeIsAnError) {
  EXPECT_EQ(RaisedBy([] { Node().Fold(); }), kObjectNotSet);
}

}  // namespace
}  // namespace parvex
