#include "cli/quote/quote_text.h"

#include <algorithm>
#include <tuple>

#include "cli/terminal/colours.h"
#include "cli/terminal/printable.h"
#include "formats/text/text.h"

namespace parvex::cli {
namespace {

constexpr const char* kNoNumber = "?";

// So wide a column becomes; a wider cell moves what follows it in its own row, and no other row is filled up to it.
constexpr std::size_t kWidestColumn = 60;

// Columns of text, each as wide as its widest cell.
class Table {
 public:
  explicit Table(std::vector<bool> isRight) : isRight_(std::move(isRight)), widths_(isRight_.size()) {}

  void Add(std::vector<std::string> cells) {
    for (std::size_t i = 0; i < cells.size(); ++i) {
      widths_[i] = std::max(widths_[i], std::min(Width(cells[i]), kWidestColumn));
    }
    rows_.push_back(std::move(cells));
  }

  std::string Text(std::string_view indent) const {
    std::string text;
    for (const std::vector<std::string>& row : rows_) {
      std::string line(indent);
      for (std::size_t i = 0; i < row.size(); ++i) {
        const std::string padding(widths_[i] - std::min(Width(row[i]), widths_[i]), ' ');
        line += isRight_[i] ? padding + row[i] : row[i] + padding;
        line += "  ";
      }
      text += TrimBlanks(" " + line).empty() ? "" : line.substr(0, line.find_last_not_of(' ') + 1);
      text += '\n';
    }
    return text;
  }

 private:
  // Every character but the bytes that continue one.
  static std::size_t Width(const std::string& text) {
    return static_cast<std::size_t>(
        std::ranges::count_if(text, [](char byte) { return (static_cast<unsigned char>(byte) & 0xC0) != 0x80; }));
  }

  std::vector<bool> isRight_;
  std::vector<std::size_t> widths_;
  std::vector<std::vector<std::string>> rows_;
};

std::string AmountText(const std::optional<Hundredths>& amount) { return amount ? FormatAmount(*amount) : kNoNumber; }

std::string ComponentTable(const QuoteUnit& unit) {
  Table table({false, false, true, true, true, false, false});
  for (const QuoteComponent& component : unit.components) {
    table.Add({Printable(component.type), Printable(component.partNumber), Printable(component.quantity) + " x",
               Printable(FormatPrice(component.price)), AmountText(component.Amount()), Printable(component.supplier),
               Printable(component.description) + (component.preOrder == "1" ? " (ordered ahead)" : "")});
  }
  return table.Text("       ");
}

std::string AttributesLine(const QuoteUnit& unit) {
  std::string line;
  for (const QuoteAttribute& attribute : unit.attributes) {
    line += (line.empty() ? "" : ", ") + Printable(attribute.name) + " " + Printable(attribute.value);
  }
  return line;
}

std::string UnitAsText(const QuoteUnit& unit, bool takesColours) {
  std::string text = "   Base unit " + Printable(unit.sequence) + "  " +
                     Coloured(Printable(unit.partNumber), Colour::Bold, takesColours) + "  " +
                     Printable(unit.quantity) + " x " + Printable(FormatPrice(unit.price)) + " = " +
                     AmountText(unit.Amount()) + "\n";
  std::vector<std::string> lines = unit.descriptions;
  lines.push_back(AttributesLine(unit));
  if (!unit.etoDescription.empty()) {
    lines.push_back("ETO description: " + unit.etoDescription);
  }
  if (!unit.orderConfiguration.empty()) {
    lines.push_back("order configuration: " + std::to_string(unit.orderConfiguration.size()) + " characters");
  }
  for (const std::string& line : lines) {
    if (!line.empty()) {
      text += "     " + Coloured(Printable(line), Colour::Dim, takesColours) + "\n";
    }
  }
  return text + ComponentTable(unit);
}

std::string TagAsText(std::size_t number, const QuoteTag& tag, bool takesColours) {
  const std::size_t stored = StoredBytes(tag);
  std::string text = "\n" + std::to_string(number) + ". " +
                     Coloured(Printable(tag.markFor), Colour::Bold, takesColours) + "  " + TotalText(TotalOf(tag)) +
                     "\n   PDSG " + Printable(tag.pdsg) + ", tag id " + Printable(tag.legacyTagId) +
                     ", build version " + (tag.buildVersion.empty() ? "unknown" : Printable(tag.buildVersion)) +
                     ", stored data " + (stored == 0 ? "none" : Counted(stored, "byte")) + "\n";
  for (const QuoteUnit& unit : tag.units) {
    text += UnitAsText(unit, takesColours);
  }
  return text;
}

// What came or went is green or red, what changed yellow.
template <typename Value>
std::string MarkedLine(const std::string& indent, const std::optional<Value>& before, const std::optional<Value>& after,
                       const std::string& line, bool takesColours) {
  const Colour colour = !before ? Colour::Green : !after ? Colour::Red : Colour::Yellow;
  return indent + Coloured((!before ? "+ " : !after ? "- " : "~ ") + line, colour, takesColours) + "\n";
}

std::string DifferenceLine(const Difference& difference, bool takesColours) {
  std::string line = Printable(difference.where);
  if (!difference.what.empty()) {
    line += (difference.where.empty() ? "" : ": ") + Printable(difference.what);
  }
  if (difference.before && difference.after) {
    line += "  " + Printable("\"" + *difference.before + "\" -> \"" + *difference.after + "\"");
  } else {
    const std::string& summary = difference.before ? *difference.before : *difference.after;
    for (const std::string& part :
         {Printable(summary), difference.total ? TotalText(*difference.total) : std::string()}) {
      line += part.empty() ? "" : "  " + part;
    }
  }
  return MarkedLine("", difference.before, difference.after, line, takesColours);
}

// A value of a stored text may be a whole file.
std::string ShortValue(const std::string& value) {
  constexpr std::size_t kLongestValue = 200;
  const std::string_view begin = FirstUnits(value, kLongestValue);
  return Printable("\"" + std::string(begin) + (begin.size() == value.size() ? "" : "\u2026") + "\"");
}

std::string ContentLine(const ContentDifference& difference, bool takesColours) {
  std::string line =
      Printable(difference.path) + "  " + ShortValue(difference.before ? *difference.before : *difference.after);
  if (difference.before && difference.after) {
    line += " -> " + ShortValue(*difference.after);
  }
  return MarkedLine("        ", difference.before, difference.after, line, takesColours);
}

std::string StoredDataAsText(const StoredDataComparison& stored, bool takesColours) {
  std::string text;
  for (const StoredEntryDifference& entry : stored.entries) {
    const std::string sizes = !entry.before  ? Counted(*entry.after, "byte")
                              : !entry.after ? Counted(*entry.before, "byte")
                                             : std::to_string(*entry.before) + " -> " + Counted(*entry.after, "byte");
    text += MarkedLine("    ", entry.before, entry.after,
                       Printable(entry.name) + "  " + sizes + (entry.note.empty() ? "" : "; " + Printable(entry.note)),
                       takesColours);
    for (const ContentDifference& difference : entry.contents) {
      text += ContentLine(difference, takesColours);
    }
  }
  return stored.note.empty() ? text
                             : text + "    " + Coloured(Printable(stored.note), Colour::Dim, takesColours) + "\n";
}

}  // namespace

std::string QuoteAsText(const Quote& quote, bool takesColours) {
  std::size_t units = 0;
  for (const QuoteTag& tag : quote.tags) {
    units += tag.units.size();
  }
  std::string text = Coloured(Printable(quote.project), Colour::Bold, takesColours) + ": " +
                     Counted(quote.tags.size(), "tag") + ", " + Counted(units, "base unit") + ", " +
                     TotalText(TotalOf(quote)) + "\n";
  for (std::size_t i = 0; i < quote.tags.size(); ++i) {
    text += TagAsText(i + 1, quote.tags[i], takesColours);
  }
  return text;
}

std::string DifferencesAsText(const std::vector<Difference>& differences, bool takesColours) {
  if (differences.empty()) {
    return "No differences.\n";
  }
  std::string text = Counted(differences.size(), "difference") + "\n";
  for (const Difference& difference : differences) {
    text += DifferenceLine(difference, takesColours);
    if (difference.stored) {
      text += StoredDataAsText(*difference.stored, takesColours);
    }
  }
  return text;
}

std::string ComparisonAsText(const QuoteComparison& comparison, bool takesColours) {
  std::string text = DifferencesAsText(comparison.differences, takesColours);
  if (comparison.differences.empty()) {
    return text;
  }
  text += "\ntotal before  " + TotalText(comparison.totalBefore) + "\ntotal after   " +
          TotalText(comparison.totalAfter) + "\nchange        " + SignedAmount(comparison.Change()) + "\n";
  const std::tuple<const ItemsTogether&, const char*, const char*> kinds[] = {
      {comparison.addedTags, "tag", "added"},
      {comparison.removedTags, "tag", "removed"},
      {comparison.addedUnits, "base unit", "added"},
      {comparison.removedUnits, "base unit", "removed"}};
  for (const auto& [items, noun, what] : kinds) {
    if (items.count > 0) {
      text += Counted(items.count, noun) + " " + what + ", together " + TotalText(items.total) + "\n";
    }
  }
  return text;
}

std::string TotalText(const Total& total) {
  return FormatAmount(total.amount) +
         (total.unknown == 0 ? "" : " without " + Counted(total.unknown, "line") + " whose price is no number");
}

}  // namespace parvex::cli
