#include <gtest/gtest.h>

#include <functional>
#include <string>
#include <utility>
#include <vector>

#include "seams/xml.h"
#include "tests/contract/xml_reading.h"

// What the adapter over libxml2, which does fold, keeps of every kind of content in every way of looking.

namespace parvex {
namespace {

using test::Outline;
using test::Parsed;
using xml::AppendElement;
using xml::Document;
using xml::Node;

// A document <r><c>...</c></r> that nobody has searched, and its c, below which nothing is held.
struct Made {
  Document document;
  Node content;
};

using Build = std::function<void(const Node& content)>;

Made MadeBy(const Build& build) {
  Made made{Document::New(), {}};
  const Node root = made.document.Append(made.document.CreateElement("r"));
  made.content = AppendElement(root, "c");
  build(made.content);
  return made;
}

void AppendText(const Node& parent, std::string_view text) {
  const Node source = Document::Parse("<s>x</s>").Root();
  source.SetText(text);
  parent.Append(source.FirstChild());
}

void AppendParsed(const Node& parent, const std::string& markup) { parent.Append(Document::Parse(markup).Root()); }

// Contents of every kind, of which an adapter may fold some and must leave others.
std::vector<std::pair<std::string, Build>> Contents() {
  return {
      {"elements and texts",
       [](const Node& c) {
         const Node component = AppendElement(c, "COMPONENT");
         component.SetAttribute("PRICE", "1.50");
         component.SetAttribute("EMPTY", "");
         AppendElement(component, "DESCRIPTION", "Accessory <1> & \"more\" ]]> \xC3\xA4\xE2\x82\xAC");
         AppendElement(AppendElement(component, "LIST"), "SUPPLIER");
       }},
      {"several children",
       [](const Node& c) { AppendElement(c, "a", "1"), AppendElement(c, "b"), AppendElement(c, "a", "2"); }},
      {"line ends in attributes",
       [](const Node& c) { AppendElement(c, "a").SetAttribute("v", " a\tb\r\nc\nd\r<>&\"' "); }},
      {"line ends in texts", [](const Node& c) { AppendElement(c, "a", "1\r\n2\r3\n4"); }},
      {"outer blanks", [](const Node& c) { AppendElement(c, "a", "  x  "); }},
      {"only blanks", [](const Node& c) { AppendElement(c, "a", " \t "); }},
      {"an empty text", [](const Node& c) { AppendElement(c, "a", "x").FirstChild().SetText(""); }},
      {"neighbouring texts",
       [](const Node& c) {
         AppendText(c, "one");
         AppendText(c, "two");
       }},
      {"a text beside an element",
       [](const Node& c) {
         AppendText(c, "one");
         AppendElement(c, "a", "two");
         AppendText(c, "three");
       }},
      {"a section", [](const Node& c) { AppendElement(c, "a").Append(c.Owner().CreateCData("x<y&z")); }},
      {"a section beside a text",
       [](const Node& c) {
         AppendText(c, "one");
         c.Append(c.Owner().CreateCData("two"));
       }},
      {"a section with its own end", [](const Node& c) { c.Append(c.Owner().CreateCData("x]]>y")); }},
      {"a section with line ends", [](const Node& c) { c.Append(c.Owner().CreateCData("x\r\ny")); }},
      {"an empty section", [](const Node& c) { c.Append(c.Owner().CreateCData("")); }},
      {"a comment", [](const Node& c) { AppendParsed(c, "<a><!-- x --><b/></a>"); }},
      {"an instruction", [](const Node& c) { AppendParsed(c, "<a><?x y?><b/></a>"); }},
      {"namespaces", [](const Node& c) { AppendParsed(c, "<p:a xmlns:p=\"u\" p:b=\"1\"><d xmlns=\"v\"/></p:a>"); }},
      {"a declaration that nobody uses", [](const Node& c) { AppendParsed(c, "<a xmlns:p=\"u\"><b/></a>"); }},
      {"preserved blanks", [](const Node& c) { AppendParsed(c, "<a xml:space=\"preserve\"> <b> </b> </a>"); }},
      {"dropped blanks", [](const Node& c) { AppendParsed(c, "<a> <b>x</b> <b>y</b> </a>"); }},
      {"nothing", [](const Node&) {}},
  };
}

struct Look {
  const char* name;
  std::function<std::string(const Made& made)> at;
};

std::vector<Look> Looks() {
  return {
      {"Xml", [](const Made& m) { return m.document.Xml(); }},
      {"Xml of the element", [](const Made& m) { return m.content.Xml(); }},
      {"Bytes", [](const Made& m) { return m.document.Bytes(); }},
      {"Text", [](const Made& m) { return m.content.Text(); }},
      {"Text of the root", [](const Made& m) { return m.document.Root().Text(); }},
      {"Text of the document", [](const Made& m) { return m.document.AsNode().Text(); }},
      {"FirstChild and on",
       [](const Made& m) {
         std::string names;
         for (Node node = m.content.FirstChild(); node; node = node.NextSibling()) {
           names += node.Name() + " " + node.Text() + ";";
         }
         return names;
       }},
      {"Child", [](const Made& m) { return std::string(m.content.Child("a") ? "one" : "none"); }},
      {"Child and its parent",
       [](const Made& m) {
         const Node child = m.content.Child("a");
         return child ? child.Parent().Name() + child.Owner().Root().Name() : "none";
       }},
      {"Descendant from above",
       [](const Made& m) {
         const Node found = m.document.Root().Descendant("DESCRIPTION");
         return found ? found.Text() : "none";
       }},
      {"an expression", [](const Made& m) { return std::to_string(m.document.All("//*").size()); }},
      {"the first of an expression",
       [](const Made& m) {
         const Node found = m.document.Root().First("c/*[1]");
         return found ? Outline(found) : "none";
       }},
      {"Outline", [](const Made& m) { return Outline(m.document.Root()); }},
      {"Clone", [](const Made& m) { return Outline(m.content.Clone()); }},
      {"Clone of the root", [](const Made& m) { return Outline(m.document.Root().Clone()); }},
      {"Append",
       [](const Made& m) {
         AppendElement(m.content, "z", "last");
         return Outline(m.document.Root());
       }},
      {"SetText",
       [](const Made& m) {
         m.content.SetText("new");
         return Outline(m.document.Root());
       }},
      {"SetText of the root",
       [](const Made& m) {
         m.document.Root().SetText("new");
         return Outline(m.content) + Outline(m.document.Root());
       }},
      {"Remove",
       [](const Made& m) {
         m.content.Remove();
         return Outline(m.content) + Outline(m.document.Root());
       }},
      {"an expression after Remove",
       [](const Made& m) {
         m.content.Remove();
         const std::size_t left = m.document.All("//*").size();
         return std::to_string(left) + Outline(m.content);
       }},
      {"Append to another document",
       [](const Made& m) {
         const Document other = Document::Parse("<o xmlns:q=\"u\"><i/></o>");
         other.Root().Append(m.content);
         return Outline(other.Root()) + other.Xml() + Outline(m.document.Root());
       }},
      {"Append to a document that was searched",
       [](const Made& m) {
         const Document other = Document::Parse("<o><i/></o>");
         const Node inner = other.First("o/i");
         inner.Append(m.content);
         return std::to_string(other.All("//*").size()) + Outline(other.Root());
       }},
      {"Append below a default namespace",
       [](const Made& m) {
         const Document other = Document::Parse("<o xmlns=\"u\"/>");
         other.Root().Append(m.content);
         return Outline(Parsed(other.Xml()).Root());
       }},
      {"the last handle goes",
       [](const Made& m) {
         Made held = m;
         const Node root = held.document.Root();
         held = {};
         return Outline(root);
       }},
  };
}

TEST(XmlFoldedNodes, ChangesNothingThatCanBeSeen) {
  for (const auto& [content, build] : Contents()) {
    for (const Look& look : Looks()) {
      const Made plain = MadeBy(build);
      const Made folded = MadeBy(build);
      folded.content.Fold();
      EXPECT_EQ(look.at(folded), look.at(plain)) << content << ", " << look.name;
    }
  }
}

TEST(XmlFoldedNodes, MayBeAskedAgainAndOfWhatHoldsAFoldedElement) {
  for (const auto& [content, build] : Contents()) {
    const Made plain = MadeBy(build);
    const Made folded = MadeBy(build);
    folded.content.Fold();
    folded.content.Fold();
    folded.document.Root().Fold();
    folded.document.AsNode().Fold();
    EXPECT_EQ(Outline(folded.document.Root()), Outline(plain.document.Root())) << content;
  }
}

TEST(XmlFoldedNodes, TakesElementsOfAnyDepthAndNumber) {
  const Made deep = MadeBy([](const Node& c) {
    Node node = c;
    for (int i = 0; i < 1'500; ++i) {
      node = AppendElement(node, "d");
    }
    node.SetText("x");
  });
  deep.content.Fold();
  EXPECT_EQ(deep.document.Root().Text(), "x");
  const Made wide = MadeBy([](const Node& c) {
    for (int i = 0; i < 10'000; ++i) {
      AppendElement(c, "w", "x");
    }
  });
  wide.content.Fold();
  EXPECT_EQ(wide.document.Root().Text(), std::string(10'000, 'x'));
}

TEST(XmlFoldedNodes, WritesReferencesWhereAnEncodingLacksACharacter) {
  const Document document = Document::Parse("<?xml version=\"1.0\" encoding=\"iso-8859-1\"?><r><c/></r>");
  const Node content = document.Root().FirstChild();
  AppendElement(content, "a", "\xC3\xA4\xE2\x82\xAC").Append(document.CreateCData("\xE2\x82\xAC"));
  content.Fold();
  const std::string bytes = document.Bytes();
  EXPECT_EQ(Document::Load(bytes).Root().Text(), "\xC3\xA4\xE2\x82\xAC\xE2\x82\xAC");
}

TEST(XmlFoldedNodes, HaveMoreAttributesThanAreRead) {
  const Made made = MadeBy([](const Node& c) {
    const Node a = AppendElement(c, "a");
    for (int number = 0; number < 1'100; ++number) {
      a.SetAttribute("b" + std::to_string(number), "v");
    }
  });
  made.content.Fold();
  EXPECT_EQ(made.content.FirstChild().Attribute("b1099"), "v");
}

}  // namespace
}  // namespace parvex
