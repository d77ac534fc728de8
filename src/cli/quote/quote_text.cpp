#include "cli/quote/quote_text.h"

#include <algorithm>

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
    const bool isAdded = !difference.before;
    const bool isRemoved = !difference.after;
    std::string line = isAdded ? "+ " : isRemoved ? "- " : "~ ";
    line += Printable(difference.where);
    if (!difference.what.empty()) {
      line += (difference.where.empty() ? "" : ": ") + Printable(difference.what);
    }
    if (isAdded || isRemoved) {
      line += "  " + Printable(isAdded ? *difference.after : *difference.before);
    } else {
      line += "  " + Printable("\"" + *difference.before + "\" -> \"" + *difference.after + "\"");
    }
    text += Coloured(line, isAdded ? Colour::Green : isRemoved ? Colour::Red : Colour::Yellow, takesColours) + "\n";
  }
  return text;
}

std::string TotalText(const Total& total) {
  return FormatAmount(total.amount) +
         (total.unknown == 0 ? "" : " without " + Counted(total.unknown, "line") + " whose price is no number");
}

}  // namespace parvex::cli
