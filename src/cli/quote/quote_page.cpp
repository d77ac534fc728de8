#include "cli/quote/quote_page.h"

#include "cli/page/html_page.h"
#include "cli/quote/quote_text.h"
#include "cli/terminal/printable.h"

namespace parvex::cli {
namespace {

const std::vector<Column> kComponentColumns = {{"Type", false},       {"Part number", false}, {"Quantity", true},
                                               {"Price", true},       {"Amount", true},       {"Brand", false},
                                               {"Description", false}};
const std::vector<Column> kDifferenceColumns = {{"Where", false}, {"What", false}, {"Before", false}, {"After", false}};

std::string AmountOrQuestionMark(const std::optional<Hundredths>& amount) {
  return amount ? FormatAmount(*amount) : "?";
}

std::string ComponentsTable(const QuoteUnit& unit) {
  if (unit.components.empty()) {
    return {};
  }
  std::string rows;
  for (const QuoteComponent& component : unit.components) {
    rows += TableRow("tr", kComponentColumns,
                     {component.type, component.partNumber, component.quantity, component.price,
                      AmountOrQuestionMark(component.Amount()), component.supplier,
                      component.description + (component.preOrder == "1" ? " (ordered ahead)" : "")});
  }
  return TableElement(kComponentColumns, rows);
}

std::string UnitArticle(const QuoteUnit& unit) {
  std::string html =
      "<article>\n" + Element("h3", "Base unit " + unit.sequence + ": " + unit.partNumber) + "\n" +
      Element("p", unit.quantity + " \u00D7 " + unit.price + " = " + AmountOrQuestionMark(unit.Amount())) + "\n";
  for (const std::string& line : unit.descriptions) {
    html += Element("p", line) + "\n";
  }
  html += "<dl>\n";
  for (const QuoteAttribute& attribute : unit.attributes) {
    html += Term(attribute.name, attribute.value);
  }
  html += Term("ETO description", unit.etoDescription);
  if (!unit.orderConfiguration.empty()) {
    html += Term("order configuration", Counted(unit.orderConfiguration.size(), "character"));
  }
  return html + "</dl>\n" + ComponentsTable(unit) + "</article>\n";
}

std::string TagSection(std::size_t number, const QuoteTag& tag) {
  const std::size_t stored = StoredBytes(tag);
  std::string html = "<section>\n<header>" + Element("h2", std::to_string(number) + ". " + tag.markFor) +
                     Element("span class=\"total\"", TotalText(TotalOf(tag))) + "</header>\n<dl>\n" +
                     Term("PDSG", tag.pdsg) + Term("tag id", tag.legacyTagId) +
                     Term("build version", tag.buildVersion) +
                     Term("stored data", stored == 0 ? "none" : Counted(stored, "byte")) + "</dl>\n";
  for (const QuoteUnit& unit : tag.units) {
    html += UnitArticle(unit);
  }
  return html + "</section>\n";
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
  return html + "\n" + TableElement(kDifferenceColumns, rows) + "</section>\n";
}

std::string Page(const Quote& quote, const std::string& above, const std::string& origin) {
  const std::string title = quote.project.empty() ? "Quote" : quote.project;
  std::string body =
      Element("h1", title) + "\n" +
      Element("p class=\"sum\"", Counted(quote.tags.size(), "tag") + ", together " + TotalText(TotalOf(quote))) + "\n" +
      above;
  for (std::size_t i = 0; i < quote.tags.size(); ++i) {
    body += TagSection(i + 1, quote.tags[i]);
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
