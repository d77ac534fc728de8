#include <gtest/gtest.h>

#include <ostream>
#include <string>

#include "seams/xml.h"
#include "tests/contract/contract_fixture.h"
#include "tests/contract/xml_reading.h"
#include "tests/support/hostile_markup.h"

// Documents from texts and from bytes: what every adapter of the XML seam promises.

namespace parvex {
namespace {

using test::CountOf;
using test::Outline;
using test::Parsed;
using xml::Document;

// --- Parsing ---------------------------------------------------------------------------------------------------------

TEST(XmlParse, KeepsElementsAttributesTextSectionsAndComments) {
  const Document document = Parsed("<a x=\"1\" y=\"2\">t<b/><![CDATA[<c>]]><!-- d --></a>");
  EXPECT_EQ(Outline(document.Root()), "a(x=1)(y=2)[#text't'b[]#cdata-section'<c>'#comment' d ']");
}

TEST(XmlParse, DocumentsThatWereMadeWhileManyAreExpectedAreLikeOthersAndOutliveThat) {
  Document made;
  {
    const auto documents = xml::ExpectManyDocuments();
    EXPECT_NE(Document::Parse("<a>").ParseError(), "");
    made = Parsed("<a><b/></a>");
    {
      const auto more = xml::ExpectManyDocuments();
      made.Append(Parsed("<c>d</c>").Root());
    }
    made.Append(Document::New().CreateElement("e"));
  }
  made.Append(Parsed("<f/>").Root());
  EXPECT_EQ(Outline(made.Root()), "a[b[]c[#text'd']e[]f[]]");
}

struct Unparsable {
  const char* text;
  const char* reason;
};

class XmlParseRefuses : public testing::TestWithParam<Unparsable> {};

TEST_P(XmlParseRefuses, AndLeavesAnEmptyDocument) {
  const Document document = Document::Parse(GetParam().text);
  ASSERT_TRUE(document);
  EXPECT_TRUE(document.IsEmpty()) << GetParam().reason;
  EXPECT_FALSE(document.Root());
  EXPECT_EQ(document.Xml(), "");
  EXPECT_NE(document.ParseError(), "");
  EXPECT_FALSE(document.First("//*"));
  EXPECT_TRUE(document.All("//*").empty());
}

INSTANTIATE_TEST_SUITE_P(
    UglyInput, XmlParseRefuses,
    testing::Values(Unparsable{"", "nothing"}, Unparsable{"   ", "only blanks"}, Unparsable{"abc", "no markup"},
                    Unparsable{"<a>&</a>", "lone ampersand"}, Unparsable{"<a>x & y</a>", "ampersand between blanks"},
                    Unparsable{"<a b=\"x&y\"/>", "ampersand in an attribute"},
                    Unparsable{"<a b=\"<\"/>", "less-than in an attribute"},
                    Unparsable{"<a>1 < 2</a>", "less-than in text"}, Unparsable{"<a/><b/>", "second root"},
                    Unparsable{"<a/>junk", "junk behind the root"}, Unparsable{"junk<a/>", "junk before the root"},
                    Unparsable{"<a b='1' b='2'/>", "duplicate attribute"}, Unparsable{"<a><b></a></b>", "crossed tags"},
                    Unparsable{"<a>", "open root"}, Unparsable{"<a b=1/>", "attribute without quotes"},
                    Unparsable{"<a b/>", "attribute without value"}, Unparsable{"<1a/>", "name begins with a digit"},
                    Unparsable{" <?xml version='1.0'?><a/>", "late declaration"},
                    Unparsable{"<a>&unknown;</a>", "unknown entity"}, Unparsable{"<a>\x01</a>", "control character"},
                    Unparsable{"<a>&#1;</a>", "reference to a control character"},
                    Unparsable{"<a>x]]>y</a>", "end mark of a section in text"},
                    Unparsable{"<a><!-- x -- y --></a>", "two dashes in a comment"},
                    Unparsable{"<a><![CDATA[x</a>", "open section"}, Unparsable{"<a", "open tag"}));

TEST(XmlParse, SaysWhereAndWhyItFailed) {
  if (test::RunsUnderWine()) GTEST_SKIP() << "Wine's MSXML gives no line of a parse error";
  const std::string error = Document::Parse("<a>\n  <b>\n</a>").ParseError();
  EXPECT_NE(error.find("3"), std::string::npos) << error;
}

TEST(XmlParse, DropsWhiteSpaceBetweenElements) {
  const Document document = Parsed("<a>\r\n  <b> x </b>\n\t<c>\n</c>\n</a>\n");
  EXPECT_EQ(Outline(document.Root()), "a[b[#text'x']c[]]");
}

TEST(XmlParse, KeepsWhiteSpaceInSectionsAndBesideText) {
  const Document document = Parsed("<a><![CDATA[ ]]><b>x <i/> y</b></a>");
  EXPECT_EQ(document.First("a/b").Text(), "x  y");
  EXPECT_EQ(document.Root().FirstChild().Name(), "#cdata-section");
  EXPECT_EQ(document.Root().FirstChild().Text(), " ");
}

TEST(XmlParse, KeepsWhiteSpaceWhereTheDocumentAsksForIt) {
  const Document document = Parsed("<a xml:space=\"preserve\"> <b> </b></a>");
  EXPECT_EQ(document.Root().FirstChild().Name(), "#text");
  EXPECT_EQ(document.First("a/b").Text(), " ");
}

TEST(XmlParse, IgnoresTheEncodingThatATextNames) {
  const Document document = Parsed("<?xml version=\"1.0\" encoding=\"windows-1252\"?><a>\xC3\xA9\xE2\x82\xAC</a>");
  EXPECT_EQ(document.Root().Text(), "\xC3\xA9\xE2\x82\xAC");
}

TEST(XmlParse, TakesADoctypeAsHarmless) {
  EXPECT_EQ(Parsed("<!DOCTYPE a><a>x</a>").Root().Text(), "x");
  EXPECT_EQ(Parsed("<!DOCTYPE a SYSTEM \"nowhere.dtd\"><a>x</a>").Root().Text(), "x");
}

TEST(XmlParse, ReadsAnEntityThatIsPlainText) {
  const Document document = Parsed("<!DOCTYPE a [<!ENTITY e \"plain\">]><a b=\"&e;!\">&e; text</a>");
  EXPECT_EQ(document.Root().Text(), "plain text");
  EXPECT_EQ(document.Root().Attribute("b"), "plain!");
}

std::string Nested(std::size_t depth, const std::string& innermost) {
  return test::Repeated("<d>", depth) + innermost + test::Repeated("</d>", depth);
}

TEST(XmlParse, TakesAThousandElementsInEachOther) {
  const std::size_t depth = test::RunsUnderWine() ? 250 : 1'000;  // Wine's MSXML takes 256 itself
  const Document document = Parsed(Nested(depth, "x"));
  EXPECT_EQ(document.Root().Text(), "x");
  EXPECT_EQ(CountOf(document.Xml(), "</d>"), depth);
  EXPECT_EQ(document.All("//d").size(), depth);
  EXPECT_EQ(Parsed(Nested(depth - 1, "<e/>")).First("//e").Name(), "e");
}

TEST(XmlParse, RefusesMoreThanAThousandElementsInEachOther) {
  const std::string reason = ": elements are nested more deeply than 1000";
  EXPECT_EQ(test::RefusalOf(Nested(1'000, "\n<e>x</e>")), "line 2, column 3" + reason);
  EXPECT_EQ(test::RefusalOf(Nested(1'000, "\n<e a='/>'  >x</e>")), "line 2, column 12" + reason);
  EXPECT_EQ(test::RefusalOf(Nested(1'000, "\n <e/>")), "line 2, column 4" + reason);
  EXPECT_EQ(test::RefusalOf(Nested(10'000, "x")), "line 1, column 3003" + reason);
  EXPECT_EQ(test::RefusalOf(test::Repeated("<d>", 1'000'000)), "line 1, column 3003" + reason);
}

TEST(XmlParse, CountsOnlyElementsThatAreOpenAtOnce) {
  for (const char* inner : {"<d/>", "<d></d>", "<d e='>'/>", "<!--<d><d>-->", "<![CDATA[<d><d>]]>", "<?p <d><d>?>"}) {
    EXPECT_EQ(Document::Parse(Nested(200, test::Repeated(inner, 1'500))).ParseError(), "") << inner;
  }
}

struct Dense {
  const char* name;
  std::string (*make)();
  const char* reason;
};

void PrintTo(const Dense& dense, std::ostream* out) { *out << dense.name; }

class XmlDense : public testing::TestWithParam<Dense> {};

TEST_P(XmlDense, MarkupIsRefusedAlikeByEveryAdapter) {
  const std::string error = test::RefusalOf(GetParam().make());
  EXPECT_TRUE(error.starts_with("line 1, column ")) << error;
  EXPECT_TRUE(error.ends_with(std::string(": ") + GetParam().reason)) << error;
}

std::string AttributesNamed(const char* name, std::size_t count) {
  return test::Numbered(count, [&](const std::string& number) { return " " + (name + number) + "='u'"; });
}

INSTANTIATE_TEST_SUITE_P(
    BeyondABound, XmlDense,
    testing::Values(
        Dense{"ALongDoctype", [] { return "<!DOCTYPE a [<!ENTITY e '" + std::string(40'000, 'x') + "'>]><a>&e;</a>"; },
              "the DOCTYPE is longer than 32768 bytes"},
        Dense{"AThousandAndOneAttributes", [] { return "<a" + AttributesNamed("b", 1'001) + "/>"; },
              "an element with more than 1000 attributes"},
        Dense{"DeclarationsInDeclarations",
              [] { return "<a" + AttributesNamed("xmlns:b", 200) + "><c" + AttributesNamed("xmlns:d", 51) + "/></a>"; },
              "more than 250 namespace declarations hold at once"},
        Dense{"ManyNames",
              [] {
                return "<a>" + test::Numbered(100'001, [](const std::string& n) { return "<name" + n + "/>"; }) +
                       "</a>";
              },
              "more than 100000 different names"},
        Dense{"EmptyElements", [] { return "<a>" + test::Repeated("<b/>", 400'000) + "</a>"; },
              "the document's tree would take more than 13 times the bytes of its text"},
        Dense{"ShortTexts", [] { return "<a>" + test::Repeated("<b>x</b>", 300'000) + "</a>"; },
              "the document's tree would take more than 13 times the bytes of its text"}),
    [](const auto& info) { return info.param.name; });

TEST(XmlParse, TakesAThousandAttributesAndManyDenseElements) {
  EXPECT_EQ(Document::Parse("<a" + AttributesNamed("b", 1'000) + "/>").ParseError(), "");
  EXPECT_EQ(Document::Parse("<a>" + test::Repeated("<b/>", 200'000) + "</a>").ParseError(), "");
  EXPECT_EQ(Document::Parse("<a" + AttributesNamed("xmlns:b", 250) + "><c/></a>").ParseError(), "");
}

// --- Loading bytes ---------------------------------------------------------------------------------------------------

TEST(XmlLoad, TakesBytesWithoutDeclarationForUtf8) {
  EXPECT_EQ(Document::Load("<a>\xC3\xA9</a>").Root().Text(), "\xC3\xA9");
  EXPECT_EQ(Document::Load("\xEF\xBB\xBF<a>\xC3\xA9</a>").Root().Text(), "\xC3\xA9");
}

TEST(XmlLoad, DecodesAsDeclared) {
  const char* const kText1252 = "<?xml version=\"1.0\" encoding=\"windows-1252\"?><a>\xE9\x80</a>";
  EXPECT_EQ(Document::Load(kText1252).Root().Text(), "\xC3\xA9\xE2\x82\xAC");
  const char* const kLatin1 = "<?xml version='1.0' encoding='ISO-8859-1'?><a>\xE9</a>";
  EXPECT_EQ(Document::Load(kLatin1).Root().Text(), "\xC3\xA9");
}

TEST(XmlLoad, DecodesUtf16ByItsByteOrderMark) {
  const std::string little("\xFF\xFE<\0a\0>\0\xE9\0\xAC\x20<\0/\0a\0>\0", 20);
  EXPECT_EQ(Document::Load(little).Root().Text(), "\xC3\xA9\xE2\x82\xAC");
}

TEST(XmlLoad, DecodesUtf16WithoutAMark) {
  const std::string little("<\0a\0>\0\xE9\0\xAC\x20<\0/\0a\0>\0", 18);
  EXPECT_EQ(Document::Load(little).Root().Text(), "\xC3\xA9\xE2\x82\xAC");
  const std::string big("\0<\0a\0>\0\xE9\x20\xAC\0<\0/\0a\0>", 18);
  EXPECT_EQ(Document::Load(big).Root().Text(), "\xC3\xA9\xE2\x82\xAC");
}

struct Encoded {
  const char* name;
  const char* bytes;
  const char* text;
  bool mayBeUnknownToWine = false;
};

void PrintTo(const Encoded& encoded, std::ostream* out) { *out << encoded.name; }

class XmlEncoding : public testing::TestWithParam<Encoded> {};

TEST_P(XmlEncoding, IsReadByEveryAdapter) {
  const std::string file = "<?xml version=\"1.0\" encoding=\"" + std::string(GetParam().name) + "\"?><a b=\"" +
                           GetParam().bytes + "\">" + GetParam().bytes + "</a>";
  const Document document = Document::Load(file);
  if (GetParam().mayBeUnknownToWine && test::RunsUnderWine() && document.IsEmpty()) {
    GTEST_SKIP() << "Wine has no table for " << GetParam().name;
  }
  EXPECT_EQ(document.ParseError(), "");
  ASSERT_FALSE(document.IsEmpty());
  EXPECT_EQ(document.Root().Text(), GetParam().text);
  EXPECT_EQ(document.Root().Attribute("b"), GetParam().text);
  EXPECT_EQ(Document::Load(document.Bytes()).Root().Text(), GetParam().text) << "and written so that it reads again";
}

INSTANTIATE_TEST_SUITE_P(
    KnownToWindows, XmlEncoding,
    testing::Values(
        Encoded{"windows-1250", "\xB9", "ą"}, Encoded{"windows-1251", "\xDF", "Я"},
        Encoded{"windows-1253", "\xE1", "α"}, Encoded{"windows-1254", "\xFE", "ş"},
        Encoded{"windows-1255", "\xE0", "א"}, Encoded{"windows-1256", "\xC7", "ا"},
        Encoded{"windows-1257", "\xE0", "ą"}, Encoded{"windows-1258", "\xFE", "₫"}, Encoded{"windows-874", "\xA1", "ก"},
        Encoded{"ISO-8859-2", "\xB1", "ą"}, Encoded{"ISO-8859-3", "\xB1", "ħ"}, Encoded{"ISO-8859-4", "\xB1", "ą"},
        Encoded{"ISO-8859-5", "\xCF", "Я"}, Encoded{"ISO-8859-6", "\xC7", "ا"}, Encoded{"ISO-8859-7", "\xE1", "α"},
        Encoded{"ISO-8859-8", "\xE0", "א"}, Encoded{"ISO-8859-9", "\xFE", "ş"}, Encoded{"ISO-8859-13", "\xE0", "ą"},
        Encoded{"ISO-8859-15", "\xA4", "€"}, Encoded{"koi8-r", "\xF1", "Я"}, Encoded{"koi8-u", "\xA4", "є"},
        Encoded{"IBM437", "\x84", "ä"}, Encoded{"IBM850", "\x84", "ä"}, Encoded{"cp866", "\x9F", "Я"},
        Encoded{"macintosh", "\x8A", "ä"}, Encoded{"Shift_JIS", "\x93\xFA\x96{", "日本"},
        Encoded{"shift_jis", "\x87\x40", "①"}, Encoded{"gb2312", "\xC8\xD5", "日"}, Encoded{"GBK", "\x96\x7C", "東"},
        Encoded{"gb2312", "\x96\x7C", "東"}, Encoded{"big5", "\xA4\xE9", "日"},
        Encoded{"ks_c_5601-1987", "\xC0\xCF", "일"}, Encoded{"euc-kr", "\xC0\xCF", "일"},
        Encoded{"EUC-JP", "\xC6\xFC", "日"}, Encoded{"iso-2022-jp", "\x1B$BF|\x1B(B", "日", true},
        Encoded{"GB18030", "\xC8\xD5", "日", true}, Encoded{"utf-7", "+ZeU-", "日"}, Encoded{"latin1", "\xE4", "ä"},
        Encoded{"x-sjis", "\x93\xFA", "日"}, Encoded{"utf8", "\xC3\xA4", "ä"}));

TEST(XmlLoad, RefusesAnEncodingThatIsNotKnownAndSaysItsName) {
  const Document document = Document::Load("<?xml version='1.0' encoding='x-no-such'?><a/>");
  EXPECT_TRUE(document.IsEmpty());
  EXPECT_EQ(document.ParseError(), "the encoding \"x-no-such\" cannot be read");
}

TEST(XmlLoad, RefusesUtf16ThatTheBytesAreNotIn) {
  const Document document = Document::Load("<?xml version='1.0' encoding='UTF-16'?><a/>");
  EXPECT_TRUE(document.IsEmpty());
  EXPECT_EQ(document.ParseError(), "the declaration names \"UTF-16\", but the bytes are not in it");
}

TEST(XmlLoad, RefusesBytesThatAreNotValidInTheirEncoding) {
  for (const char* bytes : {"<a>\xE9</a>", "<a>\xC3</a>", "<?xml version='1.0' encoding='UTF-8'?><a b='\xFF'/>",
                            "<?xml version='1.0' encoding='Shift_JIS'?><a>\x93</a>",
                            "<?xml version='1.0' encoding='ISO-8859-7'?><a>\xFF</a>"}) {
    const Document document = Document::Load(bytes);
    EXPECT_TRUE(document.IsEmpty());
    EXPECT_NE(document.ParseError(), "");
  }
}

}  // namespace
}  // namespace parvex
