#include "cli/quote/tag_section.h"

#include <optional>
#include <vector>

#include "cli/page/html_page.h"
#include "cli/quote/quote_text.h"
#include "cli/terminal/printable.h"

namespace parvex::cli {
namespace {

const std::vector<Column> kComponentColumns = {
    {"Type", false},  {"Part number", false, true}, {"Quantity", true}, {"Price", true}, {"Amount", true},
    {"Brand", false}, {"Description", false}};

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
                     {component.type, component.partNumber, component.quantity, FormatPrice(component.price),
                      AmountOrQuestionMark(component.Amount()), component.supplier,
                      component.description + (component.preOrder == "1" ? " (ordered ahead)" : "")});
  }
  return TableElement("Components of base unit " + unit.sequence, kComponentColumns, rows);
}

std::string UnitArticle(const QuoteUnit& unit, const std::string& id, const std::string& remark, FoldedData& folded) {
  std::string html =
      "<article id=\"" + id + "\">\n" + Element("h3", "Base unit " + unit.sequence + ": " + unit.partNumber) + "\n" +
      remark +
      Element("p", unit.quantity + " \u00D7 " + FormatPrice(unit.price) + " = " + AmountOrQuestionMark(unit.Amount())) +
      "\n";
  for (const std::string& line : unit.descriptions) {
    html += Element("p", line) + "\n";
  }
  std::string terms;
  for (const QuoteAttribute& attribute : unit.attributes) {
    terms += Term(attribute.name, attribute.value);
  }
  terms += Term("ETO description", unit.etoDescription);
  html += "<dl>\n" + terms + "</dl>\n";
  return html + folded.OrderConfiguration(unit) + ComponentsTable(unit) + "</article>\n";
}

}  // namespace

std::string TagId(std::size_t place) { return "tag-" + std::to_string(place + 1); }

std::string RemovedTagId(std::size_t place) { return "removed-tag-" + std::to_string(place + 1); }

std::string UnitId(const std::string& tagId, std::size_t place) { return tagId + "-unit-" + std::to_string(place + 1); }

std::string TagSection(std::size_t number, const QuoteTag& tag, const TagRemarks& remarks, FoldedData& folded) {
  const std::size_t stored = StoredBytes(tag);
  std::string html =
      "<section id=\"" + remarks.id + "\"" + (remarks.change.empty() ? "" : " class=\"" + remarks.change + "\"") +
      ">\n<header>" + Element("h2", std::to_string(number) + ". " + tag.markFor) +
      Element("span class=\"total\"", TotalText(TotalOf(tag))) + "</header>\n" + remarks.ofTag + "<dl>\n" +
      Term("PDSG", tag.pdsg) + Term("tag id", tag.legacyTagId) + Term("build version", tag.buildVersion) +
      Term("stored data", stored == 0 ? "none" : Counted(stored, "byte")) + "</dl>\n";
  html += folded.StoredData(tag);
  for (std::size_t i = 0; i < tag.units.size(); ++i) {
    html += UnitArticle(tag.units[i], UnitId(remarks.id, i), remarks.ofUnit ? remarks.ofUnit(i) : "", folded);
  }
  return html + "</section>\n";
}

}  // namespace parvex::cli
