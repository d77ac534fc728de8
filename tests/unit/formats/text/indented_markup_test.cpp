#include "formats/text/indented_markup.h"

#include <gtest/gtest.h>

#include <string>

namespace parvex {
namespace {

std::string WholeIndented(std::string_view markup) {
  const IndentedMarkup indented = Indented(markup, SIZE_MAX);
  EXPECT_FALSE(indented.isCut);
  return indented.text;
}

TEST(IndentedMarkup, HasAnElementOnALineAndItsTextBesideIt) {
  EXPECT_EQ(WholeIndented("<?xml version=\"1.0\"?><A b=\"1\"><B>text</B><C/><D></D><E><F>1</F></E></A>"),
            "<?xml version=\"1.0\"?>\n"
            "<A b=\"1\">\n"
            "  <B>text</B>\n"
            "  <C/>\n"
            "  <D></D>\n"
            "  <E>\n"
            "    <F>1</F>\n"
            "  </E>\n"
            "</A>");
}

TEST(IndentedMarkup, TakesBlanksBetweenMarkupForLayoutAndKeepsTextsAsTheyAre) {
  EXPECT_EQ(WholeIndented("<A>\r\n      <B>\n</B>\t</A>\n"), "<A>\n  <B></B>\n</A>");
  EXPECT_EQ(WholeIndented("<A> one <B>two</B> three </A>"), "<A> one <B>two</B> three </A>");
  EXPECT_EQ(WholeIndented("<A><![CDATA[<B> ]] ></A>]]></A>"), "<A><![CDATA[<B> ]] ></A>]]></A>");
}

TEST(IndentedMarkup, KnowsWhatIsNoTag) {
  EXPECT_EQ(WholeIndented("<A><!-- <B> > --><B c='>' d=\"'/>\"><?p <q> ?></B></A>"),
            "<A>\n  <!-- <B> > -->\n  <B c='>' d=\"'/>\">\n    <?p <q> ?>\n  </B>\n</A>");
}

TEST(IndentedMarkup, EndsWithThePieceThatIsTooMuchAndSaysSo) {
  const IndentedMarkup indented = Indented("<A><B>1</B><B>2</B><B>3</B></A>", 8);
  EXPECT_EQ(indented.text, "<A>\n  <B>");
  EXPECT_TRUE(indented.isCut);
  EXPECT_FALSE(Indented("<A>1</A>  ", 8).isCut) << "blanks at the end are nothing that is missing";
}

TEST(IndentedMarkup, OfWhatIsDeepTakesNoMoreThanItsBound) {
  std::string deep;
  for (int i = 0; i < 100'000; ++i) {
    deep += "<A>";
  }
  EXPECT_LT(Indented(deep, 100'000).text.size(), 101'000u);
}

TEST(IndentedMarkup, OfBrokenMarkupIsSomeText) {
  for (const char* const broken :
       {"<", "<A", "<A b='", "</A></A>", "<!--", "<![CDATA[", "<?p", ">", "]]>", "<A><", "text"}) {
    EXPECT_EQ(WholeIndented(broken).empty(), false) << broken;
  }
  EXPECT_EQ(WholeIndented(""), "");
}

}  // namespace
}  // namespace parvex
