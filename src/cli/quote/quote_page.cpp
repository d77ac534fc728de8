#include "cli/quote/quote_page.h"

#include "cli/page/html_page.h"
#include "cli/quote/folded_data.h"
#include "cli/quote/quote_text.h"
#include "cli/quote/tag_section.h"
#include "cli/terminal/printable.h"

namespace parvex::cli {
namespace {

const std::vector<Column> kTagColumns = {{"Tag", false, true}, {"PDSG", false}, {"Base units", true}, {"Total", true}};
const std::vector<Column> kDifferenceColumns = {{"Where", false}, {"What", false}, {"Before", false}, {"After", false}};

// The tags with their totals, each leading to its section, and the whole total below them.
std::string ListOfTags(const Quote& quote) {
  std::string rows;
  std::size_t units = 0;
  for (std::size_t i = 0; i < quote.tags.size(); ++i) {
    const QuoteTag& tag = quote.tags[i];
    units += tag.units.size();
    rows += TableRow("tr", kTagColumns,
                     {{std::to_string(i + 1) + ". " + tag.markFor, TagId(i)},
                      tag.pdsg,
                      std::to_string(tag.units.size()),
                      TotalText(TotalOf(tag))});
  }
  const std::string together = TableRow(
      "tr", kTagColumns, {std::string("together"), std::string(), std::to_string(units), TotalText(TotalOf(quote))});
  return rows.empty() ? rows
                      : "<nav aria-label=\"Tags\">" + TableElement("Tags", kTagColumns, rows, together) + "</nav>\n";
}

std::string DifferencesSection(const std::vector<Difference>& differences) {
  std::string html =
      "<section>\n" + Element("h2", differences.empty() ? "No differences" : Counted(differences.size(), "difference"));
  if (differences.empty()) {
    return html + "\n</section>\n";
  }
  std::string rows;
  for (const Difference& difference : differences) {
    const std::string kind = !difference.before ? "added" : !difference.after ? "removed" : "changed";
    rows += TableRow(
        "tr class=\"" + kind + "\"", kDifferenceColumns,
        {difference.where.empty() ? "quote" : difference.where, difference.what.empty() ? kind : difference.what,
         difference.before.value_or(""), difference.after.value_or("")});
  }
  return html + "\n" + TableElement("Differences", kDifferenceColumns, rows) + "</section>\n";
}

std::string Page(const Quote& quote, const std::string& above, const std::string& origin) {
  const std::string title = quote.project.empty() ? "Quote" : quote.project;
  std::string body =
      Element("h1", title) + "\n" +
      Element("p class=\"sum\"", Counted(quote.tags.size(), "tag") + ", together " + TotalText(TotalOf(quote))) + "\n" +
      ListOfTags(quote) + above;
  FoldedData folded;
  for (std::size_t i = 0; i < quote.tags.size(); ++i) {
    body += TagSection(i + 1, quote.tags[i], {TagId(i), "", "", {}}, folded);
  }
  return PageOf(title, "", body, origin);
}

}  // namespace

std::string QuotePage(const Quote& quote, const std::string& fileName) { return Page(quote, "", fileName); }

std::string ComparisonPage(const Quote& after, const std::vector<Difference>& differences,
                           const std::string& beforeName, const std::string& afterName) {
  return Page(after, DifferencesSection(differences), afterName + " compared with " + beforeName);
}

}  // namespace parvex::cli
