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

TEST(HtmlPage, KeepsATableATableForScreenReadersWhateverItsStyle) {
  const std::vector<Column> columns = {{"Name", false, true}, {"Sum", true}};
  EXPECT_EQ(
      TableElement("<c>", columns, TableRow("tr", columns, {{"<a>", "tag-1"}, std::string("2")})),
      "<div class=\"scroll\"><table role=\"table\"><caption>&lt;c&gt;</caption>\n"
      "<thead role=\"rowgroup\"><tr role=\"row\"><th scope=\"col\" role=\"columnheader\">Name</th>"
      "<th scope=\"col\" role=\"columnheader\" class=\"n\">Sum</th></tr></thead>\n<tbody role=\"rowgroup\">\n"
      "<tr role=\"row\"><th scope=\"row\" role=\"rowheader\" data-column=\"Name\"><a href=\"#tag-1\">&lt;a&gt;</a>"
      "</th><td role=\"cell\" class=\"n\" data-column=\"Sum\">2</td></tr>\n</tbody></table></div>\n");
  EXPECT_THAT(TableEnd("<tr></tr>"), HasSubstr("</tbody>\n<tfoot role=\"rowgroup\">\n<tr></tr></tfoot></table>"));
}

TEST(HtmlPage, FoldsMarkupUnderATextAndCutsTexts) {
  EXPECT_EQ(Folded("<s>", "<p></p>\n"), "<details><summary>&lt;s&gt;</summary>\n<p></p>\n</details>\n");
  EXPECT_EQ(TextBlock("<a\nb", 4), "<pre>&lt;a\nb</pre>\n");
  EXPECT_EQ(TextBlock("<a\nb", 3), "<pre>&lt;a\n\n... and 1 byte more</pre>\n");
}

}  // namespace
}  // namespace parvex::cli
