#include "cli/quote/quote_page.h"

#include <array>
#include <string_view>

#include "cli/quote/quote_text.h"
#include "cli/terminal/printable.h"
#include "version.h"

namespace parvex::cli {
namespace {

// In a narrow window each row of a table becomes a block, each cell of it a line that begins with its column's name.
constexpr std::string_view kStyle = R"(
:root { color-scheme: light dark; --line: #8884; --soft: #8882; --dim: #666; }
@media (prefers-color-scheme: dark) { :root { --dim: #aaa; } }
body { font: 15px/1.45 system-ui, sans-serif; max-width: 72rem; margin: 2rem auto; padding: 0 1rem; }
body { overflow-wrap: anywhere; }
h1 { margin-bottom: 0; } h2 { margin: 0; }
.sum { color: var(--dim); margin-top: .2rem; }
section { border: 1px solid var(--line); border-radius: .5rem; padding: 1rem 1.2rem; margin: 1.2rem 0; }
section > header { display: flex; justify-content: space-between; align-items: baseline; gap: 1rem; flex-wrap: wrap; }
.total, td.n, th.n { font-variant-numeric: tabular-nums; text-align: right; }
.total { font-weight: 600; font-size: 1.1rem; }
dl { display: flex; flex-wrap: wrap; gap: .2rem 1.6rem; margin: .5rem 0 1rem; }
dl div { display: flex; gap: .4rem; } dt { color: var(--dim); flex: none; } dd { margin: 0; }
article { border-top: 1px solid var(--line); padding: .8rem 0 .2rem; }
h3 { margin: 0; font-size: 1rem; } p { margin: .2rem 0; }
.scroll { overflow-x: auto; }
table { border-collapse: collapse; width: 100%; margin: .6rem 0; }
th, td { text-align: left; vertical-align: top; padding: .25rem 1rem .25rem .3rem; max-width: 16rem; }
th, td { border-bottom: 1px solid var(--soft); overflow-wrap: break-word; }
th { color: var(--dim); font-weight: 500; }
tr.added td { background: #2a24; } tr.removed td { background: #c224; } tr.changed td { background: #c924; }
footer { color: var(--dim); font-size: .85rem; }
@media (max-width: 45rem) {
  thead { display: none; }
  table, tbody, tr { display: block; }
  tr { padding: .3rem 0; } tr + tr { border-top: 1px solid var(--line); }
  td, td.n { display: flex; gap: .8rem; border: 0; padding: .1rem .3rem; text-align: left; max-width: none; }
  td { overflow-wrap: anywhere; }
  td::before { content: attr(data-column); color: var(--dim); flex: 0 0 7rem; }
  td:empty { display: none; }
}
@media print { section { break-inside: avoid-page; } }
)";

// Nothing of a page is loaded from elsewhere, and nothing in it may run.
constexpr std::string_view kPolicy = "default-src 'none'; style-src 'unsafe-inline'";

// Text from outside, as content or as the value of an attribute.
std::string Escaped(std::string_view text) {
  std::string escaped;
  for (const char c : Printable(text)) {
    switch (c) {
      case '&':
        escaped += "&amp;";
        break;
      case '<':
        escaped += "&lt;";
        break;
      case '>':
        escaped += "&gt;";
        break;
      case '"':
        escaped += "&quot;";
        break;
      default:
        escaped += c;
    }
  }
  return escaped;
}

std::string Element(const std::string& tag, std::string_view text) {
  return "<" + tag + ">" + Escaped(text) + "</" + tag.substr(0, tag.find(' ')) + ">";
}

std::string Term(std::string_view name, std::string_view value) {
  return value.empty() ? "" : "<div>" + Element("dt", name) + Element("dd", value) + "</div>\n";
}

struct Column {
  const char* name;
  bool isNumber;
};

constexpr std::array<Column, 7> kComponentColumns = {{{"Type", false},
                                                      {"Part number", false},
                                                      {"Quantity", true},
                                                      {"Price", true},
                                                      {"Amount", true},
                                                      {"Brand", false},
                                                      {"Description", false}}};
constexpr std::array<Column, 4> kDifferenceColumns = {
    {{"Where", false}, {"What", false}, {"Before", false}, {"After", false}}};

template <std::size_t size>
std::string TableRow(const std::string& tag, const std::array<Column, size>& columns,
                     const std::array<std::string, size>& cells) {
  std::string html = "<" + tag + ">";
  for (std::size_t i = 0; i < size; ++i) {
    const std::string kind = columns[i].isNumber ? " class=\"n\"" : "";
    html += Element("td" + kind + " data-column=\"" + columns[i].name + "\"", cells[i]);
  }
  return html + "</tr>\n";
}

template <std::size_t size>
std::string TableElement(const std::array<Column, size>& columns, const std::string& rows) {
  std::string html = "<div class=\"scroll\"><table>\n<thead><tr>";
  for (const Column& column : columns) {
    html += Element(column.isNumber ? "th class=\"n\"" : "th", column.name);
  }
  return html + "</tr></thead>\n<tbody>\n" + rows + "</tbody></table></div>\n";
}

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
  std::string html =
      "<!DOCTYPE html>\n<html lang=\"en\">\n<head>\n<meta charset=\"utf-8\">\n"
      "<meta name=\"viewport\" content=\"width=device-width, initial-scale=1\">\n"
      "<meta http-equiv=\"Content-Security-Policy\" content=\"" +
      std::string(kPolicy) + "\">\n" + Element("title", title) + "\n<style>" + std::string(kStyle) +
      "</style>\n</head>\n<body>\n" + Element("h1", title) + "\n" +
      Element("p class=\"sum\"", Counted(quote.tags.size(), "tag") + ", together " + TotalText(TotalOf(quote))) + "\n" +
      above;
  for (std::size_t i = 0; i < quote.tags.size(); ++i) {
    html += TagSection(i + 1, quote.tags[i]);
  }
  return html + Element("footer", origin + ", shown by parvex " PARVEX_VERSION) + "\n</body>\n</html>\n";
}

}  // namespace

std::string QuotePage(const Quote& quote, const std::string& fileName) { return Page(quote, "", fileName); }

std::string ComparisonPage(const Quote& after, const std::vector<Difference>& differences,
                           const std::string& beforeName, const std::string& afterName) {
  return Page(after, DifferencesSection(differences), afterName + " compared with " + beforeName);
}

}  // namespace parvex::cli
