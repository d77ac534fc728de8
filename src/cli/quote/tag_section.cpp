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

void AppendComponents(std::string& page, const QuoteUnit& unit) {
  if (unit.components.empty()) {
    return;
  }
  page += TableBegin("Components of base unit " + unit.sequence, kComponentColumns);
  for (const QuoteComponent& component : unit.components) {
    page += TableRow("tr", kComponentColumns,
                     {component.type, component.partNumber, component.quantity, FormatPrice(component.price),
                      AmountOrQuestionMark(component.Amount()), component.supplier,
                      component.description + (component.preOrder == "1" ? " (ordered ahead)" : "")});
  }
  page += TableEnd();
}

void AppendUnit(std::string& page, const QuoteUnit& unit, const std::string& id, const std::string& remark,
                FoldedData& folded) {
  page +=
      "<article id=\"" + id + "\">\n" + Element("h3", "Base unit " + unit.sequence + ": " + unit.partNumber) + "\n" +
      remark +
      Element("p", unit.quantity + " \u00D7 " + FormatPrice(unit.price) + " = " + AmountOrQuestionMark(unit.Amount())) +
      "\n";
  for (const std::string& line : unit.descriptions) {
    page += Element("p", line) + "\n";
  }
  page += "<dl>\n";
  for (const QuoteAttribute& attribute : unit.attributes) {
    page += Term(attribute.name, attribute.value);
  }
  page += Term("ETO description", unit.etoDescription) + "</dl>\n" + folded.OrderConfiguration(unit);
  AppendComponents(page, unit);
  page += "</article>\n";
}

}  // namespace

std::string TagId(std::size_t place) { return "tag-" + std::to_string(place + 1); }

std::string RemovedTagId(std::size_t place) { return "removed-tag-" + std::to_string(place + 1); }

std::string UnitId(const std::string& tagId, std::size_t place) { return tagId + "-unit-" + std::to_string(place + 1); }

void AppendTagSection(std::string& page, std::size_t number, const QuoteTag& tag, const TagRemarks& remarks,
                      FoldedData& folded) {
  const std::size_t stored = StoredBytes(tag);
  page += "<section id=\"" + remarks.id + "\"" + (remarks.change.empty() ? "" : " class=\"" + remarks.change + "\"") +
          ">\n<header>" + Element("h2", std::to_string(number) + ". " + tag.markFor) +
          Element("span class=\"total\"", TotalText(TotalOf(tag))) + "</header>\n" + remarks.ofTag + "<dl>\n" +
          Term("PDSG", tag.pdsg) + Term("tag id", tag.legacyTagId) + Term("build version", tag.buildVersion) +
          Term("stored data", stored == 0 ? "none" : Counted(stored, "byte")) + "</dl>\n";
  page += folded.StoredData(tag);
  for (std::size_t i = 0; i < tag.units.size(); ++i) {
    AppendUnit(page, tag.units[i], UnitId(remarks.id, i), remarks.ofUnit ? remarks.ofUnit(i) : "", folded);
  }
  page += "</section>\n";
}

}  // namespace parvex::cli
