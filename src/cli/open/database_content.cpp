#include <algorithm>
#include <vector>

#include "cli/open/content.h"
#include "formats/jet/catalogue.h"
#include "formats/jet/decoder.h"
#include "formats/jet/values.h"

namespace parvex::cli {
namespace {

Json ColumnsOf(const jet::Table& table, Looking& looking) {
  Json members;
  AddAll(members, "columns", table.Definition().shape.columns, looking, [](const jet::Column& column) {
    return Json{{"name", ShownText(column.name)}, {"type", jet::TypeName(column.type)}};
  });
  return members["columns"];
}

// Names stay beside their values: two columns of a damaged table may have the same name.
Json RowOf(const jet::Table& table, const jet::TextRow& row, Looking& looking) {
  Json values = Json::array();
  const std::vector<jet::Column>& columns = table.Definition().shape.columns;
  for (std::size_t i = 0; i < columns.size() && looking.TakeItem(); ++i) {
    Json value = {{"name", ShownText(columns[i].name)}, {"value", nullptr}};
    if (row.texts[i]) {
      value["value"] = ShownText(*row.texts[i]);
    } else if (row.stored.values[i]) {
      value["bytes"] = row.stored.values[i]->size();
    }
    values.push_back(std::move(value));
  }
  return {{"values", std::move(values)}};
}

// A catalogue may name a table again and again, and each time it is read.
constexpr std::size_t kItemsOfTable = 100;

Json TableOf(const jet::File& file, const jet::NamedTable& named, Looking& looking) {
  looking.items -= std::min(looking.items, kItemsOfTable);
  const jet::Table table = jet::DecodeTable(file, named.definitionPage);
  Json members = {{"name", ShownText(named.name)}, {"rowCount", table.Rows().size()}};
  members["columns"] = ColumnsOf(table, looking);
  AddAll(members, "rows", table.Rows(), looking, [&](const jet::TextRow& row) { return RowOf(table, row, looking); });
  return members;
}

}  // namespace

std::optional<Content> DatabaseContent(std::string_view bytes, const std::string& name, Looking& looking) {
  if (!jet::LooksLikeDatabase(bytes)) {
    return std::nullopt;
  }
  const jet::File file(std::string(bytes), name);
  Content content = {.kind = "database", .what = "a Jet database", .members = Json::object()};
  const std::vector<jet::NamedTable> tables = jet::UserTables(file);
  for (const jet::NamedTable& table : tables) {
    if (table.name == "TagIndex") {
      content.kind = "project-database";
      content.what = "the database of a project";
    }
  }
  AddAll(content.members, "tables", tables, looking,
         [&](const jet::NamedTable& table) { return TableOf(file, table, looking); });
  return content;
}

}  // namespace parvex::cli
