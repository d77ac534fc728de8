#include "formats/jet/decoder.h"

#include "formats/jet/values.h"

namespace parvex::jet {

namespace {

std::optional<std::string> TextOf(const File& file, const Column& column, const std::optional<std::string>& stored) {
  if (!stored) return column.type == ColumnType::Boolean ? std::optional<std::string>("False") : std::nullopt;
  return DecodeValue(column, column.type == ColumnType::Memo ? file.ReadLongValue(*stored) : *stored, file.Texts());
}

}  // namespace

Table DecodeTable(const File& file, std::uint32_t definitionPage) {
  TableDefinition definition = file.ReadTable(definitionPage);
  std::vector<TextRow> rows;
  for (Row& row : file.ReadRows(definition)) {
    std::vector<std::optional<std::string>> texts;
    for (std::size_t i = 0; i < definition.shape.columns.size(); ++i) {
      texts.push_back(TextOf(file, definition.shape.columns[i], row.values[i]));
    }
    rows.push_back({std::move(row), std::move(texts)});
  }
  return {std::move(definition), std::move(rows)};
}

}  // namespace parvex::jet
