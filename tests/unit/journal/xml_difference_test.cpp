#include "journal/xml_difference.h"

#include <gtest/gtest.h>

#include <string>

namespace parvex::journal {
namespace {

struct Pair {
  const char* what;
  const char* expected;
  const char* actual;
};

class Layout : public testing::TestWithParam<Pair> {};

TEST_P(Layout, MakesNoDifferenceEitherWay) {
  EXPECT_EQ(FirstXmlDifference(GetParam().expected, GetParam().actual), std::nullopt);
  EXPECT_EQ(FirstXmlDifference(GetParam().actual, GetParam().expected), std::nullopt);
}

INSTANTIATE_TEST_SUITE_P(
    XmlDifference, Layout,
    testing::Values(Pair{"Declaration", "<A/>", "<?xml version=\"1.0\" encoding=\"Windows-1252\"?>\r\n<A/>\r\n"},
                    Pair{"ByteOrderMark", "<A/>", "\xEF\xBB\xBF<A/>"},
                    Pair{"Quotes", "<A b=\"it's\"/>", "<A b='it&apos;s'/>"},
                    Pair{"BlanksInTags", "<A b=\"1\"></A>", "<A\n  b = \"1\" ></A >"},
                    Pair{"OrderOfAttributes", "<A b=\"1\" xmlns:x=\"u\" c=\"2\"/>",
                         "<A c=\"2\" b=\"1\" xmlns:x=\"u\"/>"},
                    Pair{"EmptyElement", "<A><B/></A>", "<A><B></B></A>"},
                    Pair{"Indentation", "<A><B>1</B><C/></A>", "<A>\r\n\t<B>1</B>\r\n\t<C/>\r\n</A>\r\n"},
                    Pair{"BlanksAroundAComment", "<A><!--c--></A>", "<A>\n<!--c-->\n</A>"},
                    Pair{"LineEnds", "<A>1\n2</A>", "<A>1\r\n2</A>"},
                    Pair{"LineEndsInAttributes", "<A b=\"1 2\"/>", "<A b=\"1\r\n2\"/>"},
                    Pair{"References", "<A b=\"&lt;&#10;\">\xC3\xBC>\"\xF0\x9F\x98\x80\xE2\x82\xAC</A>",
                         "<A b='&#x3C;&#xA;'>&#252;&gt;&quot;&#x1F600;&#x20AC;</A>"},
                    Pair{"CDataSection", "<A>a&amp;b &lt;c</A>", "<A>a<![CDATA[&b <]]>c</A>"},
                    Pair{"LayoutOfADocumentThatIsAText", "<A><![CDATA[<B><C>1</C></B>]]></A>",
                         "<A>&lt;B&gt;\r\n\t&lt;C&gt;1&lt;/C&gt;\r\n&lt;/B&gt;</A>"},
                    Pair{"TheSameTextThatIsNoXml", "nothing <", "nothing <"}),
    [](const auto& info) { return info.param.what; });

class Content : public testing::TestWithParam<Pair> {};

TEST_P(Content, MakesADifferenceEitherWay) {
  EXPECT_NE(FirstXmlDifference(GetParam().expected, GetParam().actual), std::nullopt);
  EXPECT_NE(FirstXmlDifference(GetParam().actual, GetParam().expected), std::nullopt);
}

INSTANTIATE_TEST_SUITE_P(
    XmlDifference, Content,
    testing::Values(
        Pair{"Name", "<A/>", "<B/>"},
        Pair{"ADocumentThatIsAText", "<A><![CDATA[<B>1</B>]]></A>", "<A><![CDATA[<B>2</B>]]></A>"},
        Pair{"MarkupThatIsNoDocument", "<A><![CDATA[<B> <C>]]></A>", "<A><![CDATA[<B><C>]]></A>"},
        Pair{"LetterCaseOfAName", "<A/>", "<a/>"}, Pair{"Prefix", "<x:A xmlns:x=\"u\"/>", "<y:A xmlns:y=\"u\"/>"},
        Pair{"Text", "<A>1</A>", "<A>2</A>"}, Pair{"TextOrNone", "<A>1</A>", "<A/>"},
        Pair{"BlankBehindText", "<A>1</A>", "<A>1 </A>"},
        Pair{"BlankInMixedContent", "<A>to <B/>go</A>", "<A>to<B/>go</A>"},
        Pair{"BlankAsValue", "<A><B> </B></A>", "<A><B/></A>"}, Pair{"NumberOfBlanksAsValue", "<A> </A>", "<A>  </A>"},
        Pair{"BlankInACDataSection", "<A><B/><![CDATA[ ]]></A>", "<A><B/></A>"},
        Pair{"PreservedBlanks", "<A xml:space=\"preserve\"> <B/></A>", "<A xml:space=\"preserve\"><B/></A>"},
        Pair{"BlanksPreservedAbove", "<A xml:space=\"preserve\"><B> <C/></B></A>",
             "<A xml:space=\"preserve\"><B><C/></B></A>"},
        Pair{"AttributeValue", "<A b=\"1\"/>", "<A b=\"1 \"/>"}, Pair{"AttributeOrNone", "<A b=\"\"/>", "<A/>"},
        Pair{"LineFeedInAnAttribute", "<A b=\"&#10;\"/>", "<A b=\" \"/>"},
        Pair{"Order", "<A><B/><C/></A>", "<A><C/><B/></A>"}, Pair{"Depth", "<A><B/><C/></A>", "<A><B><C/></B></A>"},
        Pair{"OneMore", "<A><B/></A>", "<A><B/><B/></A>"}, Pair{"Comment", "<A><!--c--></A>", "<A><!--d--></A>"},
        Pair{"Instruction", "<A><?c d?></A>", "<A><?c e?></A>"},
        Pair{"ReferenceInACDataSection", "<A>&amp;</A>", "<A><![CDATA[&amp;]]></A>"},
        Pair{"BlanksBesideTextThatIsNoXml", "<A>", "<A> "}, Pair{"XmlAndNoXml", "<A/>", "<A/><"},
        Pair{"LayoutBesideADocumentType", "<!DOCTYPE A><A b='1'/>", "<!DOCTYPE A><A b=\"1\"/>"},
        Pair{"NothingAndADocument", "", "<A/>"}),
    [](const auto& info) { return info.param.what; });

TEST(XmlDifference, BlanksAreLayoutAgainBelowAndBehindPreservedOnes) {
  EXPECT_EQ(FirstXmlDifference("<A><B xml:space=\"preserve\"/><C xml:space=\"default\"/></A>",
                               "<A><B xml:space=\"preserve\"/> <C xml:space=\"default\"/> </A>"),
            std::nullopt);
  EXPECT_EQ(FirstXmlDifference("<A xml:space=\"preserve\"><B xml:space=\"default\"><C/></B></A>",
                               "<A xml:space=\"preserve\"><B xml:space=\"default\"> <C/></B></A>"),
            std::nullopt);
}

TEST(XmlDifference, IsWhereThePieceBeginsThatIsAnotherOne) {
  EXPECT_EQ(FirstXmlDifference("<A><B>1</B></A>", "<A>\n  <B>2</B>\n</A>"), (XmlDifference{6, 9}));
  EXPECT_EQ(FirstXmlDifference("<A><B>1</B></A>", "<A b=\"\"><B>1</B></A>"), (XmlDifference{0, 0}));
  EXPECT_EQ(FirstXmlDifference("<A>1</A>", "<A>1<B/></A>"), (XmlDifference{4, 4}));
}

TEST(XmlDifference, OfOtherTextIsWhereTheFirstByteDiffers) {
  EXPECT_EQ(FirstXmlDifference("abc", "abd"), (XmlDifference{2, 2}));
  EXPECT_EQ(FirstXmlDifference("<A>", "<A>  "), (XmlDifference{3, 3}));
}

TEST(XmlDifference, OfLargeDocumentsIsFoundInOnePass) {
  std::string flat = "<A>";
  std::string indented = "<A>\r\n";
  for (int i = 0; i < 100'000; ++i) {
    flat += "<BASEUNIT SEQUENCE=\"1\" QUANTITY=\"2\">text of a unit</BASEUNIT>";
    indented += "  <BASEUNIT QUANTITY='2' SEQUENCE='1'>text of a unit</BASEUNIT>\r\n";
  }
  EXPECT_EQ(FirstXmlDifference(flat + "</A>", indented + "</A>"), std::nullopt);
  const auto difference = FirstXmlDifference(flat + "</A>", indented + "<C/></A>");
  EXPECT_EQ(difference, (XmlDifference{flat.size(), indented.size()}));
}

}  // namespace
}  // namespace parvex::journal
