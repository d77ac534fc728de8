#include <gtest/gtest.h>
#include <malloc.h>

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <string>

#include "seams/automation_error.h"
#include "seams/xml.h"
#include "tests/support/hostile_markup.h"

// What the adapter over libxml2 does beyond the seam's contract: exact markup and bytes, and its guards.

namespace parvex {
namespace {

using test::RefusalOf;
using test::Repeated;
using xml::Document;
using xml::Node;

TEST(XmlGuards, RefuseNestedEntities) {
  std::string text = "<!DOCTYPE a [<!ENTITY l0 \"lol\">";
  for (int i = 1; i < 10; ++i) {
    const std::string inner = "&l" + std::to_string(i - 1) + ";";
    text += "<!ENTITY l" + std::to_string(i) + " \"" + Repeated(inner, 10) + "\">";
  }
  EXPECT_NE(RefusalOf(text + "]><a>&l9;</a>").find("l9"), std::string::npos);
  EXPECT_NE(RefusalOf(text + "]><a b=\"&l9;\"/>").find("l9"), std::string::npos);
  EXPECT_EQ(Document::Parse(text + "]><a>unused</a>").ParseError(), "");
  EXPECT_EQ(Document::Parse(text + "]><a>unused</a>").Root().Text(), "unused");
}

TEST(XmlGuards, RefuseEntitiesThatExpandBeyondTheBound) {
  const std::string declared = "<!DOCTYPE a [<!ENTITY e \"" + std::string(10'000, 'x') + "\">]>";
  EXPECT_EQ(Document::Parse(declared + "<a>" + Repeated("&e;", 90) + "</a>").Root().Text().size(), 900'000u);
  EXPECT_NE(RefusalOf(declared + "<a>" + Repeated("&e;", 101) + "</a>").find("expand"), std::string::npos);
  EXPECT_NE(RefusalOf(declared + "<a>" + Repeated("<b c=\"&e;\"/>", 101) + "</a>").find("expand"), std::string::npos);
}

TEST(XmlGuards, RefuseDefaultedAttributesBeyondTheBound) {
  const std::string declared = "<!DOCTYPE a [<!ATTLIST b c CDATA \"" + std::string(10'000, 'x') + "\">]>";
  EXPECT_NE(RefusalOf(declared + "<a>" + Repeated("<b/>", 101) + "</a>").find("expand"), std::string::npos);
}

TEST(XmlGuards, RefuseParameterEntities) {
  EXPECT_NE(RefusalOf("<!DOCTYPE a [<!ENTITY % p \"<!ENTITY e 'x'>\">%p;]><a>&e;</a>").find("'p'"), std::string::npos);
}

TEST(XmlGuards, RefuseEntitiesWithMarkup) {
  EXPECT_NE(RefusalOf("<!DOCTYPE a [<!ENTITY e \"<b/>\">]><a>&e;</a>"), "");
  EXPECT_NE(RefusalOf("<!DOCTYPE a [<!ENTITY e \"&#60;b/>\">]><a>&e;</a>"), "");
  EXPECT_NE(RefusalOf("<!DOCTYPE a [<!ENTITY e \"&e;\">]><a>&e;</a>"), "");
}

TEST(XmlGuards, ReadNoFile) {
  const std::filesystem::path folder = std::filesystem::path(testing::TempDir()) / "parvex_xml_guards";
  std::filesystem::create_directories(folder);
  const std::string secret = (folder / "secret.txt").string();
  const std::string subset = (folder / "subset.dtd").string();
  std::ofstream(secret) << "secret";
  std::ofstream(subset) << "<!ENTITY e \"secret\"><!ATTLIST a k CDATA \"secret\">";

  EXPECT_NE(RefusalOf("<!DOCTYPE a [<!ENTITY e SYSTEM \"file://" + secret + "\">]><a>&e;</a>"), "");
  EXPECT_NE(RefusalOf("<!DOCTYPE a [<!ENTITY % e SYSTEM \"" + subset + "\">%e;]><a/>"), "");
  EXPECT_NE(RefusalOf("<!DOCTYPE a SYSTEM \"" + subset + "\"><a>&e;</a>"), "");
  EXPECT_EQ(Document::Parse("<!DOCTYPE a SYSTEM \"" + subset + "\"><a/>").Root().Attribute("k"), std::nullopt);
  const Document included = Document::Parse(
      "<a xmlns:x=\"http://www.w3.org/2001/XInclude\"><x:include parse=\"text\" href=\"" + secret + "\"/></a>");
  EXPECT_EQ(included.Root().Text(), "");
  EXPECT_EQ(included.Root().FirstChild().Name(), "x:include");
  std::filesystem::remove_all(folder);
}

TEST(XmlGuards, RefuseTextBeginningsThatLookLikeOtherEncodings) {
  EXPECT_NE(RefusalOf(std::string("<\0a\0/\0>\0", 8)), "");
  EXPECT_NE(RefusalOf("\xFF\xFE<"), "");
  EXPECT_NE(RefusalOf("\x4C\x6F\xA7\x94"), "");
}

TEST(XmlGuards, RefuseExpressionsThatAreNestedTooDeeply) {
  const Document document = Document::Parse("<a/>");
  EXPECT_THROW(document.First(Repeated("(", 100'000) + "a" + Repeated(")", 100'000)), AutomationError);
  EXPECT_THROW(document.First("a" + Repeated("[a", 100'000) + Repeated("]", 100'000)), AutomationError);
  EXPECT_THROW(document.First(std::string("a\0b", 3)), AutomationError);
  EXPECT_TRUE(document.First("a"));
}

TEST(XmlGuards, WriteNothingToStandardError) {
  testing::internal::CaptureStderr();
  const Document document = Document::Parse("<a/>");
  for (const char* text :
       {"<a", "<a>&x;</a>", "<p:a/>", "<!DOCTYPE a [<!ATTLIST b i ID #IMPLIED>]><a><b i='1'/><b i='1'/></a>",
        "<a xmlns:p=\"\"/>", "<a xmlns=\"relative\"/>", "<?xml version=\"1.7\"?><a/>"}) {
    Document::Parse(text);
  }
  for (const char* expression :
       {"[", "x()", "p:x()", "$v", "$p:v", "p:a", "1", "count()", "id(1, 2)", "string(a, a)"}) {
    EXPECT_THROW(document.First(expression), AutomationError) << expression;
  }
  EXPECT_EQ(testing::internal::GetCapturedStderr(), "");
}

TEST(XmlStrictness, RefusesUndeclaredPrefixesAndOtherVersions) {
  EXPECT_NE(RefusalOf("<p:a/>"), "");
  EXPECT_NE(RefusalOf("<a p:b=\"1\"/>"), "");
  EXPECT_NE(RefusalOf("<?xml version=\"1.1\"?><a/>"), "");
}

TEST(XmlStrictness, SaysLineColumnAndReason) {
  const std::string error = RefusalOf("<a>\n<b>\n x & y</b></a>");
  EXPECT_TRUE(error.starts_with("line 3, column ")) << error;
  EXPECT_TRUE(RefusalOf("<a>\n<b>\x02</b></a>").starts_with("line 2, column 4: ")) << RefusalOf("<a>\n<b>\x02</b></a>");
  EXPECT_EQ(error.find('\n'), std::string::npos);
}

TEST(XmlOneLine, IsTheMarkupOfADocument) {
  const auto markupOf = [](std::string_view text) { return Document::Parse(text).Xml(); };
  EXPECT_EQ(markupOf("<a>\n  <b>x</b>\n  <c/>\n</a>"), "<a><b>x</b><c/></a>\r\n");
  EXPECT_EQ(markupOf("<?xml version='1.0' encoding='windows-1252'?>\n<a/>"), "<?xml version=\"1.0\"?><a/>\r\n");
  EXPECT_EQ(markupOf("<?xml version='1.0' standalone='yes'?><a/>"),
            "<?xml version=\"1.0\" standalone=\"yes\"?><a/>\r\n");
  EXPECT_EQ(markupOf("<!-- c --><?p  q?><a><?r?></a>"), "<!-- c --><?p q?><a><?r?></a>\r\n");
  EXPECT_EQ(markupOf("<!DOCTYPE a SYSTEM \"x.dtd\"><a/>"), "<!DOCTYPE a SYSTEM \"x.dtd\"><a/>\r\n");
  EXPECT_EQ(markupOf("<a b='\"&#10;&#13;&#9;>'>&#13;&gt;\"'&#13;&#10;</a>"),
            "<a b=\"&quot;&#10;&#13;&#9;&gt;\">&#13;&gt;\"'\r\n</a>\r\n");
  EXPECT_EQ(markupOf("<a><![CDATA[]]><![CDATA[x]]></a>"), "<a><![CDATA[]]><![CDATA[x]]></a>\r\n");
}

TEST(XmlOneLine, DeclaresNamespacesOnlyWhereTheyAreMissing) {
  const Document document =
      Document::Parse("<p:a xmlns:p=\"u\" xmlns=\"d\"><b p:x=\"1\"><p:c/></b><e xmlns=\"\"/></p:a>");
  EXPECT_EQ(document.Root().Xml(), "<p:a xmlns:p=\"u\" xmlns=\"d\"><b p:x=\"1\"><p:c/></b><e xmlns=\"\"/></p:a>");
  EXPECT_EQ(document.Root().FirstChild().Xml(), "<b xmlns=\"d\" xmlns:p=\"u\" p:x=\"1\"><p:c/></b>");
  document.Root().FirstChild().Append(document.CreateElement("none"));
  EXPECT_EQ(document.Root().FirstChild().Xml(), "<b xmlns=\"d\" xmlns:p=\"u\" p:x=\"1\"><p:c/><none xmlns=\"\"/></b>");
  EXPECT_EQ(document.Root().Attribute("xmlns:p"), "u");
  EXPECT_EQ(document.Root().Attribute("xmlns"), "d");
}

TEST(XmlNamespaces, OutliveTheElementThatDeclaredThem) {
  const Document document = Document::Parse("<r><a xmlns:p=\"u\"><p:b p:c=\"1\"/></a></r>");
  const Node b = document.Root().FirstChild().FirstChild();
  document.Root().SetText("");
  document.Root().Append(b);
  EXPECT_EQ(b.Xml(), "<p:b xmlns:p=\"u\" p:c=\"1\"/>");
  b.SetAttribute("p:c", "2");
  b.SetAttribute("p:d", "3");
  EXPECT_EQ(b.Xml(), "<p:b xmlns:p=\"u\" p:c=\"2\" p:d=\"3\"/>");
  b.SetAttribute("xml:space", "preserve");
  b.SetText(" x ");
  EXPECT_EQ(b.Text(), " x ");
  EXPECT_EQ(b.Clone().Xml(), b.Xml());
}

TEST(XmlEncodings, AreWrittenAsDeclared) {
  const auto bytesOf = [](std::string_view text) { return Document::Parse(text).Bytes(); };
  EXPECT_EQ(bytesOf("<a>\xC3\xA9</a>"), "<a>\xC3\xA9</a>\r\n");
  EXPECT_EQ(bytesOf("<?xml version=\"1.0\" encoding=\"windows-1252\"?><a "
                    "b=\"\xE2\x88\x9E\">\xC3\xA9\xE2\x82\xAC\xE2\x88\x9E</a>"),
            "<?xml version=\"1.0\" encoding=\"windows-1252\"?><a b=\"&#8734;\">\xE9\x80&#8734;</a>\r\n");
  EXPECT_EQ(bytesOf("<?xml version=\"1.0\" encoding=\"windows-1252\"?><a><![CDATA[\xE2\x88\x9E]]></a>"),
            "<?xml version=\"1.0\" encoding=\"windows-1252\"?><a><![CDATA[]]>&#8734;<![CDATA[]]></a>\r\n");
  EXPECT_EQ(bytesOf("<?xml version=\"1.0\" encoding=\"UTF-16\"?><a/>").substr(0, 6), std::string("\xFF\xFE<\0?\0", 6));
  EXPECT_EQ(bytesOf("<?xml version=\"1.0\" encoding=\"utf-8\"?><a>\xC3\xA9</a>"),
            "<?xml version=\"1.0\" encoding=\"utf-8\"?><a>\xC3\xA9</a>\r\n");
}

TEST(XmlEncodings, ThatAreNotKnownAreWrittenAsUtf8AndSaidSo) {
  for (const std::string name : {"x-unknown", "UTF-7", "IBM037", "UTF-32"}) {
    const Document document = Document::Parse("<?xml version=\"1.0\" encoding=\"" + name + "\"?><a>\xC3\xA9+</a>");
    EXPECT_EQ(document.Bytes(), "<?xml version=\"1.0\" encoding=\"UTF-8\"?><a>\xC3\xA9+</a>\r\n") << name;
  }
}

TEST(XmlEncodings, ThatLackACharacterOfANameAreRefused) {
  const Document document = Document::Parse("<?xml version=\"1.0\" encoding=\"us-ascii\"?><a><!-- \xC3\xA9 --></a>");
  EXPECT_THROW(document.Bytes(), AutomationError);
}

TEST(XmlEncodings, ThatAreNotKnownAreNotLoaded) {
  EXPECT_NE(Document::Load("<?xml version='1.0' encoding='x-unknown'?><a/>").ParseError(), "");
  EXPECT_NE(Document::Load("<?xml version='1.0' encoding='UTF-16'?><a/>").ParseError(), "");
  EXPECT_NE(Document::Load(std::string_view("\xFF\xFE<\0a", 5)).ParseError(), "");
}

TEST(XmlNames, AreCopiedBetweenDocumentsOfDifferentDictionaries) {
  const Document before = Document::Parse("<r><early k=\"x\"><inner>\"</inner></early></r>");
  std::string many = "<m>";
  for (int i = 0; i < 60'000; ++i) {
    many += "<n" + std::to_string(i) + "/>";
  }
  EXPECT_FALSE(Document::Parse(many + "</m>").IsEmpty());
  Document after = Document::Parse("<s><late/></s>");
  Node held;
  {
    Document source = Document::Parse(before.Xml());
    held = after.Append(before.First("//early"));
    before.Root().Append(after.First("s/late"));
  }
  EXPECT_EQ(after.Root().Xml(), "<s><early k=\"x\"><inner>\"</inner></early></s>");
  EXPECT_EQ(before.Root().Xml(), "<r><late/></r>");
  after = Document();
  held.SetAttribute("k", "y");
  EXPECT_EQ(held.Xml(), "<early k=\"y\"><inner>\"</inner></early>");
}

TEST(XmlNames, OfOneDictionaryAreNotTakenForThoseOfTheNext) {
  Document before = Document::Parse("<r/>");
  before.Root().SetAttribute("key", "1");
  before.Root().Append(before.CreateElement("child"));
  std::string many = "<m>";
  for (int i = 0; i < 60'000; ++i) {
    many += "<o" + std::to_string(i) + "/>";
  }
  EXPECT_FALSE(Document::Parse(many + "</m>").IsEmpty());
  const Document after = Document::Parse("<s key=\"2\"/>");
  after.Root().SetAttribute("key", "3");
  after.Append(after.CreateElement("child"));
  before = Document();
  EXPECT_EQ(after.Root().Xml(), "<s key=\"3\"><child/></s>");
}

TEST(XmlNames, OfAttributesWithoutPrefixAreOthersThanThoseWithOne) {
  const Document document = Document::Parse("<a xmlns:p=\"u\" p:b=\"1\"/>");
  document.Root().SetAttribute("b", "2");
  document.Root().SetAttribute("p:b", "3");
  EXPECT_EQ(document.Root().Xml(), "<a xmlns:p=\"u\" p:b=\"3\" b=\"2\"/>");
}

TEST(XmlIds, AreNotSelectedSoThatNothingPointsToNodesThatAreGone) {
  const Document document =
      Document::Parse("<!DOCTYPE a [<!ATTLIST b i ID #IMPLIED>]><a><b i=\"x\"/><b xml:id=\"y\"/></a>");
  EXPECT_FALSE(document.First("id('x')"));
  document.First("//b").SetAttribute("i", "z");
  document.Root().SetText("");
  EXPECT_FALSE(document.First("id('x')"));
  EXPECT_FALSE(document.First("id('y')"));
}

TEST(XmlDepth, OfABuiltTreeIsNoDanger) {
  constexpr int kDepth = 200'000;
  const Document document = Document::Parse("<r/>");
  Node node = document.Root();
  for (int i = 0; i < kDepth; ++i) {
    node = node.Append(document.CreateElement("d"));
  }
  node.SetText("x");
  const Node copy = document.Root().FirstChild().Clone();
  const Document other = Document::Parse("<o/>");
  other.Append(copy);
  EXPECT_EQ(other.Root().Text(), "x");
  EXPECT_EQ(other.Root().Xml().size(), document.Root().Xml().size());
  document.Root().SetText("");
  EXPECT_EQ(node.Text(), "x");
}

// Nodes that went into another document lie in memory that both use.
TEST(XmlMemory, OfNodesThatMovedOutlivesTheirFirstDocument) {
  Document target = Document::Parse("<t/>");
  Node held;
  {
    const Document source =
        Document::Parse("<s><a b=\"1\" xmlns:p=\"u\"><p:c>text<!-- note --><?i do?></p:c></a><d/></s>");
    held = target.Append(source.First("//a"));
    EXPECT_EQ(source.Xml(), "<s><d/></s>\r\n");
  }
  const std::string markup = "<a xmlns:p=\"u\" b=\"1\"><p:c>text<!-- note --><?i do?></p:c></a>";
  EXPECT_EQ(target.Root().Xml(), "<t>" + markup + "</t>");
  target = Document();
  EXPECT_EQ(held.Xml(), markup);
}

TEST(XmlMemory, OfADocumentOutlivesOnesThatTookNodesFromIt) {
  const Document source = Document::Parse("<s/>");
  for (int i = 0; i < 1000; ++i) {
    const Node leaf = source.CreateElement("leaf");
    leaf.SetText(std::string(static_cast<std::size_t>(i), 'x'));
    leaf.SetAttribute("k", std::to_string(i));
    const Document target = Document::Parse("<t><u>v</u></t>");
    target.Append(leaf);
    ASSERT_EQ(target.First("//leaf").Text().size(), static_cast<std::size_t>(i));
  }
  EXPECT_EQ(source.Xml(), "<s/>\r\n");
}

TEST(XmlMemory, OfTextsThatAreReplacedIsUsedAgain) {
  const Document document = Document::Parse("<a b=\"\"><![CDATA[x]]></a>");
  const Node root = document.Root();
  const Node section = root.FirstChild();
  for (const std::size_t size : {0u, 1u, 7u, 8u, 255u, 256u, 70'000u, 3u, 0u}) {
    const std::string text(size, 'y');
    section.SetText(text);
    root.SetAttribute("b", text);
    ASSERT_EQ(section.Text(), text);
    ASSERT_EQ(root.Attribute("b"), text);
  }
}

// In a document that lives long texts and elements come and go.
TEST(XmlMemory, OfADocumentDoesNotGrowWithItsChanges) {
  const Document document = Document::Parse("<a/>");
  const Node root = document.Root();
  const auto change = [&](int i) {
    root.SetText(std::string(static_cast<std::size_t>(i % 300), 'x') + "y");
    root.FirstChild().SetText(std::string(static_cast<std::size_t>(i % 70), 'z'));
    root.SetAttribute("k", std::to_string(i));
    root.SetText("");
    const Node child = root.Append(document.CreateElement("c"));
    child.Append(document.CreateCData(std::string(static_cast<std::size_t>(i % 5000), 'd')));
    const Document other = Document::Parse("<o><p q=\"r\">s</p></o>");
    other.Append(child);
    root.Append(other.Root().FirstChild());
    root.SetText("");
  };
  const auto bytesInUse = [] { return mallinfo2().uordblks + mallinfo2().hblkhd; };
  constexpr int kRound = 5000;
  for (int i = 0; i < kRound; ++i) {
    change(i);
  }
  const std::size_t before = bytesInUse();
  for (int i = 0; i < 10 * kRound; ++i) {
    change(i);
  }
  EXPECT_LE(bytesInUse(), before + before / 4 + 100'000);
}

TEST(XmlGrowth, IsLinearInNeighbouringSectionsAndReferences) {
  constexpr std::size_t kCount = 400'000;
  const Document sections = Document::Parse("<a>" + Repeated("<![CDATA[0123456789]]>", kCount) + "</a>");
  EXPECT_EQ(sections.Root().Text().size(), 10 * kCount);
  const Document references =
      Document::Parse("<!DOCTYPE a [<!ENTITY e \"x\">]><a>" + Repeated("0123456789&e;", kCount) + "</a>");
  EXPECT_EQ(references.Root().Text().size(), 11 * kCount);
}

}  // namespace
}  // namespace parvex
