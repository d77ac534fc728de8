#include <gtest/gtest.h>

#include <functional>
#include <string>
#include <vector>

#include "seams/xml.h"
#include "tests/contract/xml_reading.h"
#include "tests/support/raised_by.h"
#include "tests/support/same_node.h"

// Selecting, walking, building, moving, and what handles keep alive: what every adapter of the XML seam promises.

namespace parvex {
namespace {

using test::DescriptionOfErrorIn;
using test::IsSame;
using test::kInvalidCall;
using test::kObjectNotSet;
using test::Outline;
using test::Parsed;
using test::RaisedBy;
using xml::Document;
using xml::Node;

// --- Selecting -------------------------------------------------------------------------------------------------------

TEST(XmlSelect, GivesNodesInDocumentOrder) {
  const Document document = Parsed("<r><a>1</a><b><a>2</a></b><a>3</a></r>");
  std::string texts;
  for (const Node& node : document.All("//a")) {
    texts += node.Text();
  }
  EXPECT_EQ(texts, "123");
  texts.clear();
  for (const Node& node : document.All("//b/a | r/a[2] | r/a[1]")) {
    texts += node.Text();
  }
  EXPECT_EQ(texts, "123");
  EXPECT_EQ(document.First("r/a").Text(), "1");
}

TEST(XmlSelect, FindsNothingAsANullNode) {
  const Document document = Parsed("<r><a/></r>");
  EXPECT_FALSE(document.First("//b"));
  EXPECT_FALSE(document.First("//A"));
  EXPECT_TRUE(document.All("//b").empty());
}

TEST(XmlSelect, FromANodeSearchesBelowItOrFromTheDocument) {
  const Document document = Parsed("<r><a><x>1</x></a><b><x>2</x></b></r>");
  const Node b = document.First("r/b");
  EXPECT_EQ(b.First("x").Text(), "2");
  EXPECT_EQ(b.First(".//x").Text(), "2");
  EXPECT_EQ(b.First("descendant::x").Text(), "2");
  EXPECT_EQ(b.First("//x").Text(), "1");
  EXPECT_EQ(b.First("/r/a/x").Text(), "1");
  EXPECT_EQ(b.All("//x").size(), 2u);
  EXPECT_TRUE(IsSame(b.First(".."), document.Root()));
}

TEST(XmlSelect, ComparesTexts) {
  const Document document = Parsed(
      "<COMMAND><PARAMETER><NAME>a</NAME><VALUE>1</VALUE></PARAMETER>"
      "<PARAMETER><NAME>b</NAME><VALUE>2</VALUE></PARAMETER></COMMAND>");
  EXPECT_EQ(document.First("//COMMAND/PARAMETER[NAME='b']/VALUE").Text(), "2");
  EXPECT_FALSE(document.First("//COMMAND/PARAMETER[NAME='B']/VALUE"));
}

TEST(XmlSelect, RaisesAnErrorThatQuotesABrokenExpression) {
  const Document document = Parsed("<r/>");
  for (const std::string expression :
       {"//COMMAND/PARAMETER[NAME='it's']/VALUE", "//r[", "", "'", "r/", "p:r", "r[unknown()]", "$v", "1 +"}) {
    EXPECT_NE(RaisedBy([&] { document.First(expression); }), 0) << expression;
    EXPECT_NE(DescriptionOfErrorIn([&] { document.First(expression); }).find(expression), std::string::npos)
        << expression;
    EXPECT_NE(RaisedBy([&] { document.All(expression); }), 0) << expression;
  }
  EXPECT_TRUE(document.First("r")) << "a broken expression must not spoil the next";
}

TEST(XmlSelect, RaisesAnErrorWhenTheValueIsNoSetOfNodes) {
  const Document document = Parsed("<r/>");
  for (const char* expression : {"1 + 1", "count(r)", "'text'", "r = 'x'"}) {
    EXPECT_NE(RaisedBy([&] { document.First(expression); }), 0) << expression;
  }
}

TEST(XmlSelect, FromANodeWithoutParentSeesItsOwnTreeAndItsDocument) {
  const Document document = Parsed("<r><a/></r>");
  const Node other = document.CreateElement("other");
  const Node top = document.CreateElement("top");
  const Node behind = document.CreateElement("behind");
  top.Append(document.CreateElement("a")).SetText("inner");
  EXPECT_EQ(top.First("a").Text(), "inner");
  EXPECT_EQ(top.All(".//a").size(), 1u);
  EXPECT_FALSE(top.First("following-sibling::*"));
  EXPECT_FALSE(top.First("preceding-sibling::*"));
  EXPECT_TRUE(IsSame(top.First("//a"), document.First("r/a")));
  EXPECT_EQ(top.First("a").First("..").Name(), "top");
}

TEST(XmlWalk, StepsThroughChildren) {
  const Document document = Parsed("<r><a/>t<b/><a i='2'/></r>");
  const Node root = document.Root();
  EXPECT_EQ(root.Child("b").Name(), "b");
  EXPECT_FALSE(root.Child("c"));
  EXPECT_EQ(root.Child("a").Next("a").Attribute("i"), "2");
  EXPECT_FALSE(root.Child("b").Next("b"));
  EXPECT_EQ(root.FirstChild().NextSibling().Name(), "#text");
  EXPECT_TRUE(IsSame(root.FirstChild().Parent(), root));
  EXPECT_TRUE(IsSame(root.Parent().Child("r"), root));
  EXPECT_FALSE(document.AsNode().Parent());
  EXPECT_FALSE(root.FirstChild().FirstChild());
  EXPECT_EQ(document.AsNode().Name(), "#document");
  EXPECT_TRUE(IsSame(document.AsNode().Child("r"), root));
}

TEST(XmlWalk, FindsTheFirstDescendantInDocumentOrder) {
  const Document document = Parsed("<r><a><b>1</b></a><b>2</b><p:c xmlns:p='urn:p'>3</p:c><c>4</c></r>");
  EXPECT_EQ(document.Root().Descendant("b").Text(), "1");
  EXPECT_EQ(document.Root().Descendant("c").Text(), "4");
  EXPECT_TRUE(IsSame(document.AsNode().Descendant("r"), document.Root()));
  EXPECT_FALSE(document.Root().Descendant("r")) << "a node is not below itself";
  EXPECT_FALSE(document.First("r/a").Descendant("c")) << "what stands behind a node is not below it";
  EXPECT_FALSE(document.First("r/a/b/text()").Descendant("b"));
}

TEST(XmlWalk, LeadsFromANodeToItsDocument) {
  const Document document = Parsed("<r><a/></r>");
  EXPECT_TRUE(IsSame(document.Root().FirstChild().Owner(), document));
  EXPECT_TRUE(IsSame(document.AsNode().Owner(), document));
}

// --- Building and moving ---------------------------------------------------------------------------------------------

TEST(XmlAppend, ReturnsTheChildAndKeepsTheOrder) {
  const Document document = Document::New();
  const Node root = document.Append(document.CreateElement("r"));
  const Node a = root.Append(document.CreateElement("a"));
  a.SetAttribute("k", "v");
  root.Append(document.CreateElement("b")).SetText("x");
  document.Append(document.CreateElement("c"));
  EXPECT_EQ(root.Xml().find("<a k=\"v\"/>") != std::string::npos, true);
  EXPECT_EQ(Outline(root), "r[a(k=v)[]b[#text'x']c[]]");
  EXPECT_TRUE(IsSame(root, document.Root()));
}

TEST(XmlAppend, MovesANodeOfTheSameDocument) {
  const Document document = Parsed("<r><a/><b/><c/></r>");
  document.Root().Append(document.First("r/a"));
  EXPECT_EQ(Outline(document.Root()), "r[b[]c[]a[]]");
  document.First("r/c").Append(document.First("r/b"));
  EXPECT_EQ(Outline(document.Root()), "r[c[b[]]a[]]");
  document.Root().Append(document.First("r/a"));
  EXPECT_EQ(Outline(document.Root()), "r[c[b[]]a[]]");
}

TEST(XmlAppend, MovesANodeOutOfAnotherDocument) {
  const Document source = Parsed("<s><x k=\"1\"><y>t</y><![CDATA[u]]></x></s>");
  const Document target = Parsed("<t/>");
  const Node moved = target.Append(source.First("s/x"));
  EXPECT_EQ(Outline(source.Root()), "s[]");
  EXPECT_EQ(Outline(target.Root()), "t[x(k=1)[y[#text't']#cdata-section'u']]");
  EXPECT_TRUE(IsSame(moved.Owner(), target));
  EXPECT_EQ(target.First("//y").Text(), "t");
}

TEST(XmlAppend, RefusesWhatWouldBreakTheTree) {
  const Document document = Parsed("<r k=\"1\"><a><b/>t</a></r>");
  const Node root = document.Root();
  const Node b = document.First("r/a/b");
  const Node text = b.NextSibling();
  EXPECT_EQ(RaisedBy([&] { b.Append(root); }), kInvalidCall) << "into its own subtree";
  EXPECT_EQ(RaisedBy([&] { b.Append(b); }), kInvalidCall) << "into itself";
  EXPECT_EQ(RaisedBy([&] { b.Append(document.First("r/@k")); }), kInvalidCall) << "an attribute";
  EXPECT_EQ(RaisedBy([&] { b.Append(document.AsNode()); }), kInvalidCall) << "a document";
  EXPECT_EQ(RaisedBy([&] { text.Append(document.CreateElement("x")); }), kInvalidCall) << "to a text";
  EXPECT_EQ(RaisedBy([&] { document.AsNode().Append(document.CreateElement("x")); }), kInvalidCall) << "a second root";
  EXPECT_EQ(RaisedBy([&] { Document::New().AsNode().Append(document.CreateCData("x")); }), kInvalidCall) << "top text";
  EXPECT_EQ(Outline(root), "r(k=1)[a[b[]#text't']]");
}

// Handles that were got on their own, on elements that all have one name.
TEST(XmlAppend, KnowsWhatIsAboveByNeitherHandleNorName) {
  const Document document = Parsed("<r><a/><r i='1'><b/><r i='2'><r i='3'/></r>t</r><r i='4'><r/></r></r>");
  const auto node = [&](const char* number) { return document.First("//r[@i='" + std::string(number) + "']"); };
  const std::string before = Outline(document.Root());
  EXPECT_EQ(RaisedBy([&] { node("2").Append(node("1")); }), kInvalidCall);
  EXPECT_EQ(RaisedBy([&] { node("2").Append(document.Root()); }), kInvalidCall);
  EXPECT_EQ(RaisedBy([&] { node("3").Append(node("3")); }), kInvalidCall);
  EXPECT_EQ(RaisedBy([&] { node("1").Append(node("1")); }), kInvalidCall);
  EXPECT_EQ(Outline(document.Root()), before) << "each is where it was";
  node("3").Append(node("4"));
  node("4").Append(node("4").FirstChild());
  EXPECT_EQ(Outline(document.Root()), "r[a[]r(i=1)[b[]r(i=2)[r(i=3)[r(i=4)[r[]]]]#text't']]");
}

TEST(XmlAppend, KnowsWhatIsAboveInATreeWithoutDocument) {
  const Document document = Parsed("<r/>");
  const Node top = document.CreateElement("p");
  const Node inner = top.Append(document.CreateElement("p"));
  EXPECT_EQ(RaisedBy([&] { inner.Append(inner.Parent()); }), kInvalidCall);
  EXPECT_EQ(RaisedBy([&] { top.First("p").Append(top); }), kInvalidCall);
  EXPECT_EQ(RaisedBy([&] { top.Append(top.First(".")); }), kInvalidCall);
  EXPECT_FALSE(top.Parent());
  const Node other = document.CreateElement("p");
  other.Append(document.CreateElement("p"));
  inner.Append(other.First("."));
  EXPECT_EQ(Outline(top), "p[p[p[p[]]]]");
}

TEST(XmlCreate, RefusesWhatIsNoName) {
  const Document document = Document::New();
  for (const char* name : {"", " ", "1a", "a b", "<a>", "p:a", "-"}) {
    EXPECT_EQ(RaisedBy([&] { document.CreateElement(name); }), kInvalidCall) << name;
  }
  EXPECT_EQ(document.CreateElement("\xC3\x84").Name(), "\xC3\x84");
}

TEST(XmlRemove, LeavesANodeWithoutParentThatLivesOn) {
  const Document document = Parsed("<r><a>1</a><b>2</b></r>");
  const Node a = document.First("r/a");
  a.Remove();
  EXPECT_EQ(Outline(document.Root()), "r[b[#text'2']]");
  EXPECT_FALSE(a.Parent());
  EXPECT_FALSE(a.NextSibling());
  EXPECT_EQ(a.Text(), "1");
  a.Remove();
  document.Root().Append(a);
  EXPECT_EQ(Outline(document.Root()), "r[b[#text'2']a[#text'1']]");
}

TEST(XmlRemove, TakesTheRootOutOfItsDocument) {
  const Document document = Parsed("<r><a/></r>");
  const Node root = document.Root();
  root.Remove();
  EXPECT_TRUE(document.IsEmpty());
  EXPECT_EQ(Outline(root), "r[a[]]");
  document.Append(root);
  EXPECT_TRUE(IsSame(document.Root(), root));
}

TEST(XmlClone, IsADeepCopyWithoutParent) {
  const Document document = Parsed("<r><a k=\"1\" l=\"&lt;\"><b>x</b><![CDATA[y]]><c><d/></c>z<!-- w --></a></r>");
  const Node original = document.First("r/a");
  const Node copy = original.Clone();
  EXPECT_EQ(Outline(copy), Outline(original));
  EXPECT_FALSE(copy.Parent());
  EXPECT_TRUE(IsSame(copy.Owner(), document));
  copy.First("b").SetText("changed");
  EXPECT_EQ(original.First("b").Text(), "x");
  document.Root().Append(copy);
  EXPECT_EQ(document.All("//b").size(), 2u);
}

// --- Handles ---------------------------------------------------------------------------------------------------------

TEST(XmlHandle, OfANodeKeepsItsDocumentAlive) {
  Node node;
  {
    const Document document = Parsed("<r><a>x</a></r>");
    node = document.First("r/a");
  }
  EXPECT_EQ(node.Text(), "x");
  EXPECT_EQ(node.Parent().Name(), "r");
  EXPECT_EQ(node.Owner().Root().Name(), "r");
}

TEST(XmlHandle, FollowsItsNodeIntoAnotherDocument) {
  Node inner;
  Node attribute;
  Document target = Parsed("<t/>");
  {
    const Document source = Parsed("<s><x k=\"v\"><y>1</y></x></s>");
    inner = source.First("s/x/y");
    attribute = source.First("s/x/@k");
    target.Append(source.First("s/x"));
  }
  inner.SetText("2");
  attribute.SetText("w");
  EXPECT_EQ(Outline(target.Root()), "t[x(k=w)[y[#text'2']]]");
  EXPECT_TRUE(IsSame(inner.Owner(), target));
  target = Document();
  EXPECT_EQ(inner.Parent().Parent().Name(), "t");
}

TEST(XmlHandle, MakesNodesForTheDocumentThatItsNodeLivesInNow) {
  const Document target = Parsed("<t/>");
  const Document source = Parsed("<s><x><y/></x></s>");
  const Node x = source.First("s/x");
  const Node y = source.First("s/x/y");
  target.Append(source.First("s/x"));
  for (const Node& node : {x, y}) {
    EXPECT_TRUE(IsSame(node.Owner(), target));
    EXPECT_TRUE(IsSame(xml::AppendElement(node, "made", "1").Owner(), target));
  }
  EXPECT_EQ(Outline(target.Root()).substr(0, 1), "t");
  EXPECT_EQ(target.All("//made").size(), 2u);
  source.Append(y);
  EXPECT_TRUE(IsSame(y.FirstChild().Owner(), source));
}

TEST(XmlHandle, SurvivesWhenTheContentOfItsParentIsReplaced) {
  const Document document = Parsed("<r><a><b>deep</b><c/></a><d>other</d></r>");
  const Node a = document.First("r/a");
  const Node b = document.First("r/a/b");
  document.Root().SetText("flat");
  EXPECT_FALSE(a.Parent());
  EXPECT_TRUE(IsSame(b.Parent(), a));
  EXPECT_EQ(b.Text(), "deep");
  EXPECT_EQ(document.Root().Xml(), "<r>flat</r>");
  document.Root().Append(a);
  EXPECT_TRUE(IsSame(document.First("r/a/b"), b));
}

TEST(XmlHandle, OnAnInnerNodeKeepsADisplacedTreeAlive) {
  const Document document = Parsed("<r><a><b>deep</b></a></r>");
  const Node b = document.First("//b");
  document.Root().SetText("");
  EXPECT_EQ(b.Parent().Name(), "a");
  EXPECT_EQ(b.Text(), "deep");
}

TEST(XmlHandle, OfAScratchDocumentMayGoBeforeItsElementIsMoved) {
  const auto make = [] {
    const Document scratch = Document::New();
    const Node made = scratch.CreateElement("made");
    made.Append(scratch.CreateElement("part")).SetText("x");
    return made;
  };
  const Document target = Parsed("<t/>");
  target.Append(make());
  target.Append(make());
  EXPECT_EQ(Outline(target.Root()), "t[made[part[#text'x']]made[part[#text'x']]]");
}

TEST(XmlHandle, CanBeCopiedMovedAndAssignedToItself) {
  const Document document = Parsed("<r><a/></r>");
  Node a = document.First("r/a");
  Node copy = a;
  Node moved = std::move(a);
  EXPECT_FALSE(a);  // NOLINT: a moved-from handle is a null handle
  EXPECT_TRUE(IsSame(copy, moved));
  const Node& same = copy;
  copy = same;
  EXPECT_EQ(copy.Name(), "a");
  copy = Node();
  EXPECT_FALSE(copy);
  EXPECT_EQ(moved.Name(), "a");
}

TEST(XmlHandle, OfNodesThatNobodyAppendedIsDroppedSafely) {
  const Document document = Document::New();
  for (int i = 0; i < 1000; ++i) {
    const Node dropped = document.CreateElement("dropped");
    dropped.Append(document.CreateElement("inner")).SetAttribute("k", "v");
  }
  const Node inner = [&] {
    const Node outer = document.CreateElement("outer");
    return outer.Append(document.CreateElement("inner"));
  }();
  EXPECT_EQ(inner.Parent().Name(), "outer");
}

TEST(XmlHandle, ThatIsNullRaisesObjectNotSetForEverything) {
  const Node null;
  const Document noDocument;
  const Document document = Parsed("<r/>");
  const std::vector<std::function<void()>> asked = {
      [&] { null.IsElement(); },
      [&] { null.Name(); },
      [&] { null.Text(); },
      [&] { null.SetText("x"); },
      [&] { null.Attribute("x"); },
      [&] { null.SetAttribute("x", "y"); },
      [&] { null.Xml(); },
      [&] { null.First("x"); },
      [&] { null.All("x"); },
      [&] { null.Parent(); },
      [&] { null.FirstChild(); },
      [&] { null.NextSibling(); },
      [&] { null.Child("x"); },
      [&] { null.Next("x"); },
      [&] { null.Descendant("x"); },
      [&] { null.Append(document.Root()); },
      [&] { document.Root().Append(null); },
      [&] { null.Remove(); },
      [&] { null.Clone(); },
      [&] { null.Owner(); },
      [&] { document.Append(null); },
      [&] { noDocument.ParseError(); },
      [&] { noDocument.IsEmpty(); },
      [&] { noDocument.Root(); },
      [&] { noDocument.CreateElement("x"); },
      [&] { noDocument.CreateCData("x"); },
      [&] { noDocument.First("x"); },
      [&] { noDocument.All("x"); },
      [&] { noDocument.Append(document.Root()); },
      [&] { noDocument.Xml(); },
      [&] { noDocument.Bytes(); },
  };
  for (std::size_t i = 0; i < asked.size(); ++i) {
    EXPECT_EQ(RaisedBy(asked[i]), kObjectNotSet) << "question " << i;
  }
  EXPECT_NE(DescriptionOfErrorIn([&] { null.SetText("x"); }).find("SetText"), std::string::npos);
}

// --- Appending a new element at once ---------------------------------------------------------------------------------

TEST(XmlAppendElement, AppendsBehindTheLastChild) {
  const Document document = Parsed("<r><a>1</a></r>");
  EXPECT_EQ(xml::AppendElement(document.Root(), "b", "x & y").Text(), "x & y");
  const Node empty = xml::AppendElement(document.Root(), "c");
  EXPECT_EQ(Outline(document.Root()), "r[a[#text'1']b[#text'x & y']c[]]");
  EXPECT_TRUE(IsSame(empty.Parent(), document.Root()));
}

TEST(XmlAppendElement, MakesTheRootOfAnEmptyDocument) {
  const Document document = Document::New();
  xml::AppendElement(document.AsNode(), "r");
  EXPECT_EQ(document.Root().Name(), "r");
  EXPECT_EQ(RaisedBy([&] { xml::AppendElement(document.AsNode(), "s"); }), kInvalidCall) << "a second root";
}

TEST(XmlAppendElement, RefusesWhatTheStepsRefuse) {
  const Document document = Parsed("<r a=\"1\">text</r>");
  EXPECT_EQ(RaisedBy([] { xml::AppendElement(Node(), "a"); }), kObjectNotSet);
  EXPECT_EQ(RaisedBy([&] { xml::AppendElement(document.Root(), "1"); }), kInvalidCall);
  EXPECT_EQ(RaisedBy([&] { xml::AppendElement(document.Root(), "p:a"); }), kInvalidCall);
  EXPECT_EQ(RaisedBy([&] { xml::AppendElement(document.Root().FirstChild(), "a"); }), kInvalidCall);
  EXPECT_EQ(RaisedBy([&] { xml::AppendElement(document.Root().First("@a"), "a"); }), kInvalidCall);
  EXPECT_EQ(Outline(document.Root()), "r(a=1)[#text'text']");
}

}  // namespace
}  // namespace parvex
