#include "cli/quote/quote_page.h"

#include "cli/page/html_page.h"
#include "cli/quote/differences_section.h"
#include "cli/quote/folded_data.h"
#include "cli/quote/quote_text.h"
#include "cli/quote/tag_section.h"
#include "cli/terminal/printable.h"

namespace parvex::cli {
namespace {

const std::vector<Column> kTagColumns = {{"Tag", false, true}, {"PDSG", false}, {"Base units", true}, {"Total", true}};
const std::vector<Column> kPairColumns = {
    {"Tag", false, true}, {"Change", false}, {"Before", true}, {"After", true}, {"Difference", true}};

constexpr std::string_view kComparisonStyle = R"(
.change { font-weight: 600; }
section.removed { border-style: dashed; } section.removed h2 { text-decoration: line-through; }
section.added, section.changed { border-left-width: 4px; }
)";

std::string NumberedName(const Quote& quote, std::size_t place) {
  return std::to_string(place + 1) + ". " + quote.tags[place].markFor;
}

// A list of tags, each leading to its section; `together` is the row below them.
std::string ListOfTags(const std::vector<Column>& columns, const std::string& rows, const std::string& together) {
  return rows.empty()
             ? rows
             : "<nav aria-label=\"Tags\">" + TableBegin("Tags", columns) + rows + TableEnd(together) + "</nav>\n";
}

std::string TotalsOf(const Quote& quote) {
  std::string rows;
  std::size_t units = 0;
  for (std::size_t i = 0; i < quote.tags.size(); ++i) {
    const QuoteTag& tag = quote.tags[i];
    units += tag.units.size();
    rows += TableRow(
        "tr", kTagColumns,
        {{NumberedName(quote, i), TagId(i)}, tag.pdsg, std::to_string(tag.units.size()), TotalText(TotalOf(tag))});
  }
  const std::string all = std::to_string(units);
  return ListOfTags(
      kTagColumns, rows,
      TableRow("tr", kTagColumns, {std::string("together"), std::string(), all, TotalText(TotalOf(quote))}));
}

// The page of two quotes.
class PageOfTwo {
 public:
  PageOfTwo(const Quote& before, const Quote& after, const QuoteComparison& comparison, const std::string& beforeName)
      : before_(before),
        after_(after),
        comparison_(comparison),
        beforeName_(beforeName),
        links_(comparison.differences) {}

  void AppendTo(std::string& page) {
    page += ListOfPairs();
    AppendDifferences(page, comparison_.differences);
    for (const TagPair& pair : comparison_.tags) {
      if (pair.after) {
        AppendLater(page, pair);
      }
    }
    for (const TagPair& pair : comparison_.tags) {
      if (!pair.after) {
        AppendRemoved(page, *pair.before);
      }
    }
  }

 private:
  std::string ChangeOf(const TagPair& pair) const {
    return !pair.before ? "added" : !pair.after ? "removed" : links_.FromTag(*pair.after).empty() ? "" : "changed";
  }

  std::string Row(const TagPair& pair) const {
    const Total before = pair.before ? TotalOf(before_.tags[*pair.before]) : Total();
    const Total after = pair.after ? TotalOf(after_.tags[*pair.after]) : Total();
    const std::string change = ChangeOf(pair);
    return TableRow("tr" + (change.empty() ? "" : " class=\"" + change + "\""), kPairColumns,
                    {pair.after ? Cell(NumberedName(after_, *pair.after), TagId(*pair.after))
                                : Cell(NumberedName(before_, *pair.before), RemovedTagId(*pair.before)),
                     change.empty() ? "the same" : change, pair.before ? TotalText(before) : "",
                     pair.after ? TotalText(after) : "", SignedAmount(after.amount - before.amount)});
  }

  // In the order of the sections.
  std::string ListOfPairs() const {
    std::string rows;
    for (const bool isLater : {true, false}) {
      for (const TagPair& pair : comparison_.tags) {
        rows += pair.after.has_value() == isLater ? Row(pair) : "";
      }
    }
    return ListOfTags(kPairColumns, rows,
                      TableRow("tr", kPairColumns,
                               {std::string("together"), std::string(), TotalText(comparison_.totalBefore),
                                TotalText(comparison_.totalAfter), SignedAmount(comparison_.Change())}));
  }

  static std::string Remark(const std::string& text, const std::string& link) {
    return "<p class=\"change\">" + Escaped(text) + link + "</p>\n";
  }

  void AppendLater(std::string& page, const TagPair& pair) {
    const std::size_t place = *pair.after;
    const std::string change = ChangeOf(pair);
    const std::string remark = change == "added"     ? Remark("Added: ", links_.FromTag(place))
                               : change == "changed" ? Remark("Changed: ", links_.FromTag(place))
                                                     : "";
    const auto ofUnit = [this, place](std::size_t unit) {
      const std::string link = links_.FromUnit(place, unit);
      return link.empty() ? link : Remark("", link);
    };
    AppendTagSection(page, place + 1, after_.tags[place], {TagId(place), change, remark, ofUnit}, folded_);
  }

  void AppendRemoved(std::string& page, std::size_t place) {
    const std::string remark = Remark("Removed, it stands in " + beforeName_ + " only: ", links_.FromRemovedTag(place));
    AppendTagSection(page, place + 1, before_.tags[place], {RemovedTagId(place), "removed", remark, {}}, folded_);
  }

  const Quote& before_;
  const Quote& after_;
  const QuoteComparison& comparison_;
  const std::string& beforeName_;
  DifferenceLinks links_;
  FoldedData folded_;
};

std::string TitleOf(const Quote& quote) { return quote.project.empty() ? "Quote" : quote.project; }

std::string Heading(const Quote& quote) {
  return Element("h1", TitleOf(quote)) + "\n" +
         Element("p class=\"sum\"", Counted(quote.tags.size(), "tag") + ", together " + TotalText(TotalOf(quote))) +
         "\n";
}

}  // namespace

std::string QuotePage(const Quote& quote, const std::string& fileName) {
  std::string page = PageBegin(TitleOf(quote), "") + Heading(quote) + TotalsOf(quote);
  FoldedData folded;
  for (std::size_t i = 0; i < quote.tags.size(); ++i) {
    AppendTagSection(page, i + 1, quote.tags[i], {TagId(i), "", "", {}}, folded);
  }
  page += PageEnd(fileName);
  return page;
}

std::string ComparisonPage(const Quote& before, const Quote& after, const QuoteComparison& comparison,
                           const std::string& beforeName, const std::string& afterName) {
  std::string page = PageBegin(TitleOf(after), kComparisonStyle) + Heading(after);
  PageOfTwo(before, after, comparison, beforeName).AppendTo(page);
  page += PageEnd(afterName + " compared with " + beforeName);
  return page;
}

}  // namespace parvex::cli
