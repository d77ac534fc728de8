#include "cli/quote/differences_section.h"

#include <algorithm>

#include "cli/page/html_page.h"
#include "cli/quote/quote_text.h"
#include "cli/quote/tag_section.h"
#include "cli/terminal/printable.h"
#include "formats/text/text.h"

namespace parvex::cli {
namespace {

const std::vector<Column> kDifferenceColumns = {
    {"Where", false, true}, {"What", false}, {"Before", false}, {"After", false}};

const std::vector<Column> kStoredColumns = {{"Entry, value", false, true}, {"Before", false}, {"After", false}};

std::string DifferenceId(std::size_t row) { return "difference-" + std::to_string(row + 1); }

// Of the section that looks into stored data.
std::string StoredDataId(std::size_t row) { return "stored-" + std::to_string(row + 1); }

// What a difference is about: the base unit where both quotes have it, else its tag; nothing for the project.
std::string TargetOf(const Difference& difference) {
  const ItemPlace& after = difference.placeAfter;
  if (after.tag) {
    return after.unit ? UnitId(TagId(*after.tag), *after.unit) : TagId(*after.tag);
  }
  return difference.placeBefore.tag ? RemovedTagId(*difference.placeBefore.tag) : "";
}

// A price as all amounts are written, but for two that would then read alike.
std::pair<std::string, std::string> ShownValues(const Difference& difference) {
  std::pair<std::string, std::string> values = {difference.before.value_or(""), difference.after.value_or("")};
  if (difference.what == "price") {
    const std::pair<std::string, std::string> prices = {FormatPrice(values.first), FormatPrice(values.second)};
    return prices.first == prices.second ? values : prices;
  }
  return values;
}

template <typename Value>
std::string KindOf(const std::optional<Value>& before, const std::optional<Value>& after) {
  return !before ? "added" : !after ? "removed" : "changed";
}

std::string RowOf(std::size_t row, const Difference& difference) {
  const std::string kind = KindOf(difference.before, difference.after);
  const std::string whole = kind + (difference.total ? ", " + TotalText(*difference.total) : "");
  const auto [before, after] = ShownValues(difference);
  return TableRow("tr class=\"" + kind + "\" id=\"" + DifferenceId(row) + "\"", kDifferenceColumns,
                  {{difference.where.empty() ? "quote" : difference.where, TargetOf(difference)},
                   {difference.what.empty() ? whole : difference.what, difference.stored ? StoredDataId(row) : ""},
                   before,
                   after});
}

std::string SizeText(const std::optional<std::size_t>& bytes) { return bytes ? Counted(*bytes, "byte") : ""; }

// A value of a stored text may be a whole file.
std::string ShortCell(const std::optional<std::string>& value) {
  constexpr std::size_t kLongestValue = 200;
  const std::string_view begin = value ? FirstUnits(*value, kLongestValue) : "";
  return std::string(begin) + (value && begin.size() < value->size() ? "\u2026" : "");
}

void AppendEntry(std::string& page, const StoredEntryDifference& entry) {
  page += TableRow(
      "tr class=\"" + KindOf(entry.before, entry.after) + "\"", kStoredColumns,
      {entry.name + (entry.note.empty() ? "" : ": " + entry.note), SizeText(entry.before), SizeText(entry.after)});
  for (const ContentDifference& value : entry.contents) {
    page += TableRow("tr", kStoredColumns, {value.path, ShortCell(value.before), ShortCell(value.after)});
  }
}

void AppendStored(std::string& page, std::size_t row, const Difference& difference) {
  page += "<details id=\"" + StoredDataId(row) + "\">" +
          Element("summary", difference.where + ": what differs in the stored data") + "\n";
  if (!difference.stored->entries.empty()) {
    page += TableBegin("Stored data of " + difference.where, kStoredColumns);
    for (const StoredEntryDifference& entry : difference.stored->entries) {
      AppendEntry(page, entry);
    }
    page += TableEnd();
  }
  page += (difference.stored->note.empty() ? "" : Element("p", difference.stored->note) + "\n") + "</details>\n";
}

}  // namespace

void AppendDifferences(std::string& page, const std::vector<Difference>& differences) {
  page += "<section>\n" +
          Element("h2", differences.empty() ? "No differences" : Counted(differences.size(), "difference")) + "\n";
  if (!differences.empty()) {
    const std::size_t listed = std::min(differences.size(), kMostListedDifferences);
    page += TableBegin("Differences", kDifferenceColumns);
    for (std::size_t i = 0; i < listed; ++i) {
      page += RowOf(i, differences[i]);
    }
    page += TableEnd();
    page += listed < differences.size()
                ? Element("p", "... and " + std::to_string(differences.size() - listed) + " more") + "\n"
                : "";
    for (std::size_t i = 0; i < listed; ++i) {
      if (differences[i].stored) {
        AppendStored(page, i, differences[i]);
      }
    }
  }
  page += "</section>\n";
}

DifferenceLinks::DifferenceLinks(const std::vector<Difference>& differences) {
  for (std::size_t i = 0; i < differences.size(); ++i) {
    const auto& [before, after] = std::pair(differences[i].placeBefore, differences[i].placeAfter);
    if (after.tag) {
      Add(after_, {*after.tag, std::nullopt}, i);
    } else if (before.tag) {
      Add(removed_, {*before.tag, std::nullopt}, i);
    }
    if (after.tag && after.unit) {
      Add(after_, {*after.tag, after.unit}, i);
    }
  }
}

std::string DifferenceLinks::FromTag(std::size_t place) const { return LinkTo(after_, {place, std::nullopt}); }

std::string DifferenceLinks::FromUnit(std::size_t tag, std::size_t place) const { return LinkTo(after_, {tag, place}); }

std::string DifferenceLinks::FromRemovedTag(std::size_t place) const { return LinkTo(removed_, {place, std::nullopt}); }

void DifferenceLinks::Add(std::map<Place, Rows>& places, const Place& place, std::size_t row) {
  ++places.try_emplace(place, Rows{row, 0}).first->second.count;
}

std::string DifferenceLinks::LinkTo(const std::map<Place, Rows>& places, const Place& place) {
  const auto rows = places.find(place);
  if (rows == places.end()) {
    return {};
  }
  const std::string text = Counted(rows->second.count, "difference");
  return rows->second.first < kMostListedDifferences ? cli::LinkTo(DifferenceId(rows->second.first), text) : text;
}

}  // namespace parvex::cli
