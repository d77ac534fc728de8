#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "seams/xml.h"
#include "tests/contract/contract_fixture.h"
#include "tests/contract/xml_reading.h"
#include "tests/support/raised_by.h"

// Texts, attributes, CDATA sections and markup: what every adapter of the XML seam promises.

namespace parvex {
namespace {

using test::DescriptionOfErrorIn;
using test::kInvalidCall;
using test::Outline;
using test::Parsed;
using test::RaisedBy;
using test::Reparsed;
using xml::Document;
using xml::Node;

// --- Text ------------------------------------------------------------------------------------------------------------

struct TextCase {
  const char* markup;
  const char* text;
};

class XmlText : public testing::TestWithParam<TextCase> {};

TEST_P(XmlText, ReadsAs) { EXPECT_EQ(Parsed(GetParam().markup).Root().Text(), GetParam().text) << GetParam().markup; }

INSTANTIATE_TEST_SUITE_P(OfElements, XmlText,
                         testing::Values(TextCase{"<a/>", ""}, TextCase{"<a></a>", ""}, TextCase{"<a>   </a>", ""},
                                         TextCase{"<a> \t\r\n x \r\n\t </a>", "x"}, TextCase{"<a>x  y</a>", "x  y"},
                                         TextCase{"<a> x <b> y </b> z </a>", "x  y  z"},
                                         TextCase{"<a><b>x</b><c>y</c></a>", "xy"},
                                         TextCase{"<a> <b>x</b> <c>y</c> </a>", "x y"},
                                         TextCase{"<a>x\r\ny</a>", "x\ny"}, TextCase{"<a> <![CDATA[ x ]]> </a>", " x "},
                                         TextCase{"<a> t <![CDATA[ x ]]></a>", "t  x "},
                                         TextCase{"<a>x<!-- c -->y<?p q?></a>", "xy"},
                                         TextCase{"<a>&lt;&amp;&gt;&quot;&apos;&#65;</a>", "<&>\"'A"},
                                         TextCase{"<a xml:space='preserve'> x </a>", " x "}));

TEST(XmlText, OfADocumentIsThatOfItsRoot) { EXPECT_EQ(Parsed("<!-- c --><a> x </a>").AsNode().Text(), "x"); }

TEST(XmlText, OfAnAttributeIsItsValueUntrimmed) { EXPECT_EQ(Parsed("<a b=\" x \"/>").First("a/@b").Text(), " x "); }

TEST(XmlSetText, ReplacesAllChildren) {
  const Document document = Parsed("<a k=\"1\">x<b><c/></b>y</a>");
  document.Root().SetText("new");
  EXPECT_EQ(Outline(document.Root()), "a(k=1)[#text'new']");
}

TEST(XmlSetText, OfAnEmptyTextLeavesNoChild) {
  const Document document = Parsed("<a>x<b/></a>");
  document.Root().SetText("");
  EXPECT_FALSE(document.Root().FirstChild());
  EXPECT_EQ(document.Root().Xml(), "<a/>");
}

TEST(XmlSetText, ReadsBackTrimmedWithLineFeeds) {
  const Document document = Parsed("<a/>");
  document.Root().SetText(" one\r\ntwo ");
  EXPECT_EQ(document.Root().Text(), "one\ntwo");
  EXPECT_EQ(Reparsed(document).Text(), "one\ntwo");
}

TEST(XmlSetText, EscapesWhatMarkupWouldTakeForItself) {
  const Document document = Parsed("<a/>");
  const std::string ugly = "<b attr=\"1\" other='2'>&amp;]]></b>\xC3\xA9\xF0\x9F\x98\x80";
  document.Root().SetText(ugly);
  EXPECT_EQ(document.Root().Text(), ugly);
  EXPECT_EQ(Reparsed(document).Text(), ugly);
}

TEST(XmlSetText, RefusesWhatXmlCannotCarryAndNamesTheElement) {
  const Document document = Parsed("<Price>1</Price>");
  const std::string_view ugly[] = {
      std::string_view("a\0b", 3), "a\x01", "\x1F", "\xFF", "\xC3", "\xED\xA0\x80", "\xEF\xBF\xBE", "\xC0\xBC"};
  for (const std::string_view text : ugly) {
    EXPECT_EQ(RaisedBy([&] { document.Root().SetText(text); }), kInvalidCall);
    EXPECT_NE(DescriptionOfErrorIn([&] { document.Root().SetText(text); }).find("Price"), std::string::npos);
    EXPECT_EQ(RaisedBy([&] { document.Root().SetAttribute("k", text); }), kInvalidCall);
    EXPECT_EQ(RaisedBy([&] { document.CreateCData(text); }), kInvalidCall);
  }
  EXPECT_EQ(document.Root().Xml(), "<Price>1</Price>");
}

TEST(XmlSetText, TakesEightMegabytes) {
  const std::string large(8u << 20, 'x');
  const Document document = Parsed("<a><b/></a>");
  document.First("a/b").SetText(large);
  EXPECT_EQ(Parsed(document.Xml()).Root().Text().size(), large.size());
}

TEST(XmlSetText, TakesAHundredMegabytes) {
  if (test::RunsUnderWine()) GTEST_SKIP() << "Wine's MSXML parses no text of more than 10 MB";
  const std::string large(100u << 20, 'x');
  const Document document = Parsed("<a><b/></a>");
  document.First("a/b").SetText(large);
  const std::string markup = document.Xml();
  EXPECT_GE(markup.size(), large.size());
  const Document again = Parsed(markup);
  EXPECT_EQ(again.Root().Text().size(), large.size());
}

// --- Attributes ------------------------------------------------------------------------------------------------------

TEST(XmlAttribute, IsNothingWhenMissing) {
  const Document document = Parsed("<a b=\"\"/>");
  EXPECT_EQ(document.Root().Attribute("b"), "");
  EXPECT_EQ(document.Root().Attribute("c"), std::nullopt);
  EXPECT_EQ(document.Root().Attribute("B"), std::nullopt);
}

TEST(XmlAttribute, IsSetBehindThoseThatExist) {
  const Document document = Parsed("<a b=\"1\" c=\"2\"/>");
  document.Root().SetAttribute("d", "4");
  document.Root().SetAttribute("b", "3");
  document.Root().SetAttribute("e", "");
  EXPECT_EQ(document.Root().Xml(), "<a b=\"3\" c=\"2\" d=\"4\" e=\"\"/>");
}

TEST(XmlAttribute, KeepsQuotesBlanksAndLineBreaks) {
  const std::string ugly = " \"x\" 'y' <&> \r\n\t z ";
  const Document document = Parsed("<a/>");
  document.Root().SetAttribute("b", ugly);
  EXPECT_EQ(document.Root().Attribute("b"), ugly);
  EXPECT_EQ(Reparsed(document).Attribute("b"), ugly);
}

TEST(XmlAttribute, NormalisesWhiteSpaceInMarkup) {
  EXPECT_EQ(Parsed("<a b=\"x\r\ny\tz\"/>").Root().Attribute("b"), "x y z");
}

TEST(XmlAttribute, SelectedAsNodeCanBeSet) {
  const Document document = Parsed("<a b=\"1\"/>");
  const Node attribute = document.First("a/@b");
  EXPECT_EQ(attribute.Name(), "b");
  EXPECT_FALSE(attribute.IsElement());
  attribute.SetText("<2>");
  EXPECT_EQ(document.Root().Attribute("b"), "<2>");
}

TEST(XmlAttribute, IsRefusedWhenTheNameIsNone) {
  const Document document = Parsed("<a/>");
  for (const char* name : {"", "1 a", "a b", "<", "a:b:c", ":a", "a:", "undeclared:a"}) {
    EXPECT_EQ(RaisedBy([&] { document.Root().SetAttribute(name, "x"); }), kInvalidCall) << name;
  }
  EXPECT_EQ(document.Root().Xml(), "<a/>");
}

// --- CDATA -----------------------------------------------------------------------------------------------------------

TEST(XmlCData, HoldsTextUnchanged) {
  const Document document = Parsed("<a/>");
  const std::string text = "  <x a=\"1\">&amp;</x>\t ";
  document.Root().Append(document.CreateCData(text));
  EXPECT_EQ(document.Root().Text(), text);
  EXPECT_EQ(document.Root().Xml(), "<a><![CDATA[" + text + "]]></a>");
  EXPECT_EQ(Reparsed(document).Text(), text);
}

TEST(XmlCData, StaysParsableAroundItsOwnEndMark) {
  for (const char* text : {"]]>", "a]]>b]]>c", "]]", "]]]>", "x]", ">"}) {
    const Document document = Parsed("<a/>");
    document.Root().Append(document.CreateCData(text));
    EXPECT_EQ(document.Root().Text(), text);
    EXPECT_EQ(Reparsed(document).Text(), text);
  }
}

TEST(XmlCData, IsDisplacedBySetText) {
  const Document document = Parsed("<a/>");
  const Node section = document.Root().Append(document.CreateCData("x"));
  EXPECT_EQ(section.Name(), "#cdata-section");
  document.Root().SetText("y");
  EXPECT_EQ(document.Root().Xml(), "<a>y</a>");
}

// --- Markup ----------------------------------------------------------------------------------------------------------

TEST(XmlMarkup, OfADocumentEndsWithALineBreakAndThatOfAnElementDoesNot) {
  const Document document = Parsed("<a/>");
  EXPECT_EQ(document.Xml(), "<a/>\r\n");
  EXPECT_EQ(document.Root().Xml(), "<a/>");
}

std::vector<std::string> Pieces(const Document& document) {
  std::vector<std::string> pieces;
  document.WriteXml([&](std::string_view piece) { pieces.emplace_back(piece); });
  return pieces;
}

std::string Joined(const std::vector<std::string>& pieces) {
  std::string text;
  for (const std::string& piece : pieces) {
    text += piece;
  }
  return text;
}

// A quote of many components and of stored data that are longer than any piece.
Document LargeDocument() {
  const Document document = Document::New();
  const Node root = document.Append(document.CreateElement("r"));
  for (int i = 0; i < 5'000; ++i) {
    const Node component = xml::AppendElement(root, "c");
    component.SetAttribute("n", std::to_string(i));
    xml::AppendElement(component, "d",
                       "Gr\xC3\xB6\xC3\x9F"
                       "e <" +
                           std::to_string(i) + "> & more");
    component.Fold();
  }
  xml::AppendElement(root, "b").Append(document.CreateCData(std::string(1'000'000, 'A')));
  return document;
}

TEST(XmlMarkup, InPiecesIsTheSameText) {
  for (const char* markup : {"<a/>", "<?xml version=\"1.0\"?><!-- x --><a k=\"1\"><b>x\ny</b><![CDATA[p]]></a>"}) {
    const Document document = Parsed(markup);
    EXPECT_EQ(Joined(Pieces(document)), document.Xml());
  }
  const Document large = LargeDocument();
  const std::vector<std::string> pieces = Pieces(large);
  EXPECT_TRUE(Joined(pieces) == large.Xml());
  EXPECT_THAT(pieces, testing::Not(testing::Contains("")));
}

TEST(XmlMarkup, OfAnEmptyDocumentHasNoPieces) { EXPECT_TRUE(Pieces(Document::New()).empty()); }

TEST(XmlMarkup, InPiecesEndsWithWhatTheirTakerThrows) {
  const Document document = LargeDocument();
  int taken = 0;
  EXPECT_THROW(document.WriteXml([&](std::string_view) {
    ++taken;
    throw std::string("full");
  }),
               std::string);
  EXPECT_EQ(taken, 1);
  EXPECT_EQ(document.Root().Child("b").Text().size(), 1'000'000u) << "the document is as it was";
}

TEST(XmlMarkup, OfADocumentIsOnOneLineAsItWasRead) {
  const std::string markup = "<a k=\"1\"><b>x\ny</b><c/><d><![CDATA[p\nq]]><e>&lt;\xC3\xA9\xF0\x9F\x98\x80</e></d></a>";
  const Document document = Parsed(markup);
  EXPECT_EQ(document.Xml(), markup + "\r\n");
  document.Root().SetText("");
  EXPECT_EQ(document.Xml(), "<a k=\"1\"/>\r\n");
}

TEST(XmlMarkup, OfADocumentKeepsTheLineEndsOfASection) {
  const Document document = Parsed("<a/>");
  document.Root().Append(document.CreateCData("p\r\nq\n\r\n"));
  EXPECT_EQ(document.Xml(), "<a><![CDATA[p\r\nq\n\r\n]]></a>\r\n");
}

TEST(XmlMarkup, WritesAnEmptyElementAsOneTag) { EXPECT_EQ(Parsed("<a></a>").Root().Xml(), "<a/>"); }

TEST(XmlMarkup, KeepsTheDeclarationWhenThereIsOne) {
  const std::string markup = Parsed("<?xml version=\"1.0\"?><a/>").Xml();
  EXPECT_TRUE(markup.starts_with("<?xml version=\"1.0\"?>")) << markup;
  EXPECT_FALSE(Parsed("<a/>").Xml().starts_with("<?xml"));
}

TEST(XmlMarkup, KeepsCommentsInstructionsAndDoctype) {
  const std::string markup = Parsed("<!DOCTYPE a><!-- c --><a><?p q?></a><!-- d -->").Xml();
  for (const char* part : {"<!DOCTYPE a>", "<!-- c -->", "<?p q?>", "<!-- d -->"}) {
    EXPECT_NE(markup.find(part), std::string::npos) << markup;
  }
}

TEST(XmlMarkup, OfANewDocumentIsEmpty) {
  const Document document = Document::New();
  EXPECT_TRUE(document.IsEmpty());
  EXPECT_EQ(document.Xml(), "");
  EXPECT_EQ(document.ParseError(), "");
}

TEST(XmlMarkup, OfATextAndAnAttributeIsEscaped) {
  const Document document = Parsed("<a b=\"&lt;\">x &amp; y</a>");
  EXPECT_EQ(document.Root().FirstChild().Xml(), "x &amp; y");
  EXPECT_EQ(document.First("a/@b").Xml(), "b=\"&lt;\"");
}

TEST(XmlMarkup, DeclaresTheNamespacesOfAMovedElement) {
  if (test::RunsUnderWine()) GTEST_SKIP() << "Wine's MSXML writes no declaration for what a moved element inherited";
  const Document source = Parsed("<a xmlns:p=\"urn:p\" xmlns=\"urn:d\"><p:b p:c=\"1\"><d/></p:b></a>");
  const Document target = Parsed("<z/>");
  target.Append(source.Root().FirstChild());
  const Node again = Reparsed(target);
  EXPECT_EQ(again.First("*").Name(), "p:b");
  EXPECT_EQ(again.All("*[namespace-uri()='urn:p'][@*[namespace-uri()='urn:p']='1']").size(), 1u);
  EXPECT_EQ(again.All("*/*[namespace-uri()='urn:d']").size(), 1u);
}

TEST(XmlBytes, AreUtf8WithoutADeclaration) {
  EXPECT_EQ(Parsed("<a>\xC3\xA9</a>").Bytes().substr(0, 9), "<a>\xC3\xA9</a>");
}

TEST(XmlBytes, LoadAsTheSameDocument) {
  for (const char* declared : {"", "UTF-8", "windows-1252", "iso-8859-1", "UTF-16", "us-ascii"}) {
    const std::string declaration =
        *declared == '\0' ? "" : "<?xml version=\"1.0\" encoding=\"" + std::string(declared) + "\"?>";
    const Document document = Parsed(declaration +
                                     "<a b=\"\xC3\xA9\xE2\x82\xAC\xE2\x88\x9E\">\xC3\xA9 \xE2\x82\xAC "
                                     "\xE2\x88\x9E<c><![CDATA[\xE2\x88\x9E\xC3\xA9]]></c></a>");
    const Document loaded = Document::Load(document.Bytes());
    EXPECT_EQ(loaded.ParseError(), "") << declared;
    EXPECT_EQ(loaded.Root().Attribute("b"), document.Root().Attribute("b")) << declared;
    EXPECT_EQ(loaded.Root().Text(), document.Root().Text()) << declared;
    EXPECT_EQ(loaded.First("a/c").Text(), "\xE2\x88\x9E\xC3\xA9") << declared;
  }
}

}  // namespace
}  // namespace parvex
