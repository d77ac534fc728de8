#include "cli/page/html_page.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace parvex::cli {
namespace {

using testing::AllOf;
using testing::HasSubstr;

TEST(HtmlPage, EscapesWhatWouldBeMarkupAndWhatControls) {
  EXPECT_EQ(Escaped("<a b=\"c\">&\x1b\n"), "&lt;a b=&quot;c&quot;&gt;&amp;\uFFFD ");
  EXPECT_EQ(Element("td class=\"n\"", "<"), "<td class=\"n\">&lt;</td>");
  EXPECT_EQ(Term("<", ">"), "<div><dt>&lt;</dt><dd>&gt;</dd></div>\n");
}

TEST(HtmlPage, KeepsLinesWhereTheyCount) {
  EXPECT_EQ(EscapedLines("<a>\r\n\n b\x1b\n"), "&lt;a&gt;\n\n b\uFFFD\n");
  EXPECT_EQ(EscapedLines(""), "");
  EXPECT_EQ(EscapedLines("a\nb"), "a\nb");
}

TEST(HtmlPage, HasNoTermWithoutAValue) { EXPECT_EQ(Term("name", ""), ""); }

TEST(HtmlPage, ForbidsScriptsAndLoadsNothing) {
  EXPECT_THAT(PageOf("<t>", ".x {}", "<p>body</p>", "<o>"),
              AllOf(HasSubstr("content=\"default-src 'none'; style-src 'unsafe-inline'\""), HasSubstr(".x {}</style>"),
                    HasSubstr("<title>&lt;t&gt;</title>"), HasSubstr("<body>\n<p>body</p>"),
                    HasSubstr("<footer>&lt;o&gt;, shown by parvex ")));
}

}  // namespace
}  // namespace parvex::cli
