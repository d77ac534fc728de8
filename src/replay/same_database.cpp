#include "replay/same_database.h"

#include <algorithm>
#include <map>
#include <optional>
#include <string>
#include <vector>

#include "formats/jet/catalogue.h"
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
  const jet::File file{std::string(bytes), "database"};
  std::map<std::string, Content> tables;
  for (const jet::NamedTable& table : jet::UserTables(file)) {
    tables[table.name] = ContentOf(jet::DecodeTable(file, table.definitionPage));
  }
  return tables;
}

}  // namespace

bool SameDatabase(std::string_view one, std::string_view other) {
  try {
    return TablesOf(one) == TablesOf(other);
  } catch (const std::exception&) {
    return false;
  }
}

}  // namespace parvex::replay
