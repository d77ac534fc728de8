#include "legacy_standin/workflow/selection_file.h"

namespace parvex::standin {
namespace {

/// A value as it has to stand in the file for a private-profile reader to give it back unchanged: that reader trims
/// blanks and takes off one pair of quotes.
std::string Quoted(const std::string& value) {
  if (value.empty()) {
    return value;
  }
  const char first = value.front();
  const char last = value.back();
  const bool looksQuoted = value.size() > 1 && first == last && (first == '"' || first == '\'');
  return looksQuoted || first == ' ' || last == ' ' ? '"' + value + '"' : value;
}

class SelectionText {
 public:
  void Section(const std::string& name) {
    if (!text_.empty()) {
      text_ += "\r\n";
    }
    text_ += "[" + name + "]\r\n";
  }

  void Line(const std::string& key, const std::string& value) { text_ += key + "=" + Quoted(value) + "\r\n"; }

  void Descriptions(const std::string& section, const std::vector<std::string>& lines) {
    if (lines.empty()) {
      return;
    }
    Section(section);
    for (std::size_t i = 0; i < lines.size(); ++i) {
      Line("Description:" + std::to_string(i + 1), lines[i]);
    }
  }

  void Item(const Fields& keys, std::size_t number) {
    for (const auto& [key, value] : keys) {
      Line(key + ":" + std::to_string(number), value);
    }
  }

  /// An item of a blanket section, where the last key alone has no colon before its number: deliberate, the installed
  /// application writes it so and its readers rely on it.
  void BlanketItem(const Fields& keys, std::size_t number) {
    for (const auto& [key, value] : keys) {
      Line(key + (key == "preorderreq" ? "" : ":") + std::to_string(number), value);
    }
  }

  std::string Take() { return std::move(text_); }

 private:
  std::string text_;
};

}  // namespace

std::string FormatSelection(const Fields& header, const std::vector<Unit>& units,
                            const std::function<std::string(const StoredData&)>& pathOf) {
  SelectionText text;
  text.Section("Header");
  for (const auto& [key, value] : header) {
    text.Line(key, value);
  }
  for (std::size_t i = 0; i < units.size(); ++i) {
    const Unit& unit = units[i];
    const std::string number = std::to_string(i + 1);

    text.Section("PartNumber" + number);
    for (const auto& [key, value] : unit.keys) {
      text.Line(key, value);
    }
    if (!unit.stored.fileName.empty()) {
      text.Line("FileName", pathOf(unit.stored));
    }
    text.Descriptions("Extended Description" + number, unit.extendedDescription);
    text.Descriptions("ETO Description" + number, unit.etoDescription);

    if (!unit.accessories.empty()) {
      text.Section("Accessory" + number);
    }
    for (std::size_t k = 0; k < unit.accessories.size(); ++k) {
      text.Item(unit.accessories[k].keys, k + 1);
      if (!unit.accessories[k].stored.fileName.empty()) {
        text.Line("FileName:" + std::to_string(k + 1), pathOf(unit.accessories[k].stored));
      }
    }
    if (!unit.warranties.empty()) {
      text.Section("Warranty" + number);
    }
    for (std::size_t k = 0; k < unit.warranties.size(); ++k) {
      text.Item(unit.warranties[k], k + 1);
    }
    if (!unit.blanketItems.empty()) {
      text.Section("BlanketQuoteControl" + number);
    }
    for (std::size_t k = 0; k < unit.blanketItems.size(); ++k) {
      text.BlanketItem(unit.blanketItems[k], k + 1);
    }
  }
  return text.Take();
}

}  // namespace parvex::standin
