#include "replay/same_database.h"

#include <algorithm>
#include <map>
#include <optional>
#include <string>
#include <vector>

#include "formats/jet/decoder.h"
#include "seams/automation_error.h"

namespace parvex::replay {
namespace {

// A row as its columns read; of a value that has no text, its bytes.
using ShownRow = std::vector<std::optional<std::string>>;

struct Content {
  std::vector<std::string> columns;
  std::vector<ShownRow> rows;  // sorted
  bool operator==(const Content&) const = default;
};

Content ContentOf(const jet::Table& table) {
  Content content;
  for (const jet::Column& column : table.Definition().shape.columns) {
    content.columns.push_back(column.name);
  }
  for (const jet::TextRow& row : table.Rows()) {
    ShownRow shown = row.texts;
    for (std::size_t i = 0; i < shown.size(); ++i) {
      if (!shown[i]) {
        shown[i] = row.stored.values[i];
      }
    }
    content.rows.push_back(std::move(shown));
  }
  std::sort(content.rows.begin(), content.rows.end());
  return content;
}

std::map<std::string, Content> TablesOf(std::string_view bytes) {
  constexpr std::string_view kOfEngine = "MSys";
  constexpr std::uint32_t kPageOfId = 0x00FFFFFF;
  const jet::File file{std::string(bytes), "database"};
  const jet::Table catalogue = jet::DecodeTable(file, jet::kCataloguePage);
  const auto id = catalogue.Definition().FindColumn("Id");
  const auto type = catalogue.Definition().FindColumn("Type");
  const auto name = catalogue.Definition().FindColumn("Name");
  std::map<std::string, Content> tables;
  if (!id || !type || !name) {
    return tables;
  }
  for (const jet::TextRow& row : catalogue.Rows()) {
    const auto& [idText, typeText, nameText] = std::tie(row.texts[*id], row.texts[*type], row.texts[*name]);
    if (idText && nameText && typeText == std::to_string(jet::kTableObject) && !nameText->starts_with(kOfEngine)) {
      const auto page = static_cast<std::uint32_t>(std::stol(*idText)) & kPageOfId;
      tables[*nameText] = ContentOf(jet::DecodeTable(file, page));
    }
  }
  return tables;
}

}  // namespace

bool LooksLikeDatabase(std::string_view bytes) {
  constexpr std::string_view kMark{"\0\1\0\0Standard Jet DB\0", 20};
  return bytes.starts_with(kMark);
}

bool SameDatabase(std::string_view one, std::string_view other) {
  try {
    return TablesOf(one) == TablesOf(other);
  } catch (const std::exception&) {
    return false;
  }
}

}  // namespace parvex::replay
