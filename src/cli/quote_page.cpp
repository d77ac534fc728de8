#include "cli/quote_page.h"

#include <string_view>

#include "cli/quote_text.h"
#include "version.h"

namespace parvex::cli {
namespace {

constexpr std::string_view kStyle = R"(
:root { color-scheme: light dark; --line: #8884; --soft: #8881; --dim: #888; }
body { font: 15px/1.45 system-ui, sans-serif; max-width: 72rem; margin: 2rem auto; padding: 0 1rem; }
h1 { margin-bottom: 0; } h2 { margin: 0; }
.sum { color: var(--dim); margin-top: .2rem; }
section { border: 1px solid var(--line); border-radius: .5rem; padding: 1rem 1.2rem; margin: 1.2rem 0; }
section > header { display: flex; justify-content: space-between; align-items: baseline; gap: 1rem; flex-wrap: wrap; }
.total, td.n, th.n { font-variant-numeric: tabular-nums; text-align: right; white-space: nowrap; }
.total { font-weight: 600; font-size: 1.1rem; }
dl { display: flex; flex-wrap: wrap; gap: .2rem 1.6rem; margin: .5rem 0 1rem; }
dl div { display: flex; gap: .4rem; } dt { color: var(--dim); } dd { margin: 0; }
article { border-top: 1px solid var(--line); padding: .8rem 0 .2rem; }
h3 { margin: 0; font-size: 1rem; } p { margin: .2rem 0; }
.scroll { overflow-x: auto; }
table { border-collapse: collapse; width: 100%; margin: .6rem 0; }
th, td { text-align: left; vertical-align: top; padding: .25rem 1rem .25rem .3rem; }
th, td { border-bottom: 1px solid var(--soft); }
th { color: var(--dim); font-weight: 500; }
tr.added td { background: #2a24; } tr.removed td { background: #c224; } tr.changed td { background: #c924; }
footer { color: var(--dim); font-size: .85rem; }
@media print { section { break-inside: avoid; } }
)";

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

std::string AmountCell(const std::optional<Hundredths>& amount) {
  return Element("td class=\"n\"", amount ? FormatAmount(*amount) : "?");
}

std::string ComponentsTable(const QuoteUnit& unit) {
  if (unit.components.empty()) {
    return {};
  }
  std::string html =
      "<div class=\"scroll\"><table>\n<thead><tr><th>Type</th><th>Part number</th><th class=\"n\">Quantity</th>"
      "<th class=\"n\">Price</th><th class=\"n\">Amount</th><th>Brand</th><th>Description</th></tr></thead>\n<tbody>\n";
  for (const QuoteComponent& component : unit.components) {
    html += "<tr>" + Element("td", component.type) + Element("td", component.partNumber) +
            Element("td class=\"n\"", component.quantity) + Element("td class=\"n\"", component.price) +
            AmountCell(component.Amount()) + Element("td", component.supplier) +
            Element("td", component.description + (component.preOrder == "1" ? " (ordered ahead)" : "")) + "</tr>\n";
  }
  return html + "</tbody></table></div>\n";
}

std::string UnitArticle(const QuoteUnit& unit) {
  const std::optional<Hundredths> amount = unit.Amount();
  std::string html =
      "<article>\n" + Element("h3", "Base unit " + unit.sequence + ": " + unit.partNumber) + "\n" +
      Element("p", unit.quantity + " \u00D7 " + unit.price + " = " + (amount ? FormatAmount(*amount) : "?")) + "\n";
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
  html +=
      "\n<div class=\"scroll\"><table>\n<thead><tr><th>Where</th><th>What</th><th>Before</th><th>After</th></tr>"
      "</thead>\n<tbody>\n";
  for (const Difference& difference : differences) {
    const char* const kind = !difference.before ? "added" : !difference.after ? "removed" : "changed";
    html += std::string("<tr class=\"") + kind + "\">" + Element("td", difference.where) +
            Element("td", difference.what.empty() ? kind : difference.what) +
            Element("td", difference.before.value_or("")) + Element("td", difference.after.value_or("")) + "</tr>\n";
  }
  return html + "</tbody></table></div>\n</section>\n";
}

std::string Page(const Quote& quote, const std::string& above, const std::string& origin) {
  std::string html =
      "<!DOCTYPE html>\n<html lang=\"en\">\n<head>\n<meta charset=\"utf-8\">\n"
      "<meta name=\"viewport\" content=\"width=device-width, initial-scale=1\">\n" +
      Element("title", quote.project.empty() ? "Quote" : quote.project) + "\n<style>" + std::string(kStyle) +
      "</style>\n</head>\n<body>\n" + Element("h1", quote.project) + "\n" +
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
