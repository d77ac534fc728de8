#include "formats/jet/decoder.h"

#include <array>
#include <charconv>
#include <cstring>

#include "formats/jet/stored_text.h"

namespace parvex::jet {

namespace {

template <typename Number>
std::string Decimal(std::string_view stored) {
  Number number;
  std::memcpy(&number, stored.data(), sizeof number);
  std::array<char, 32> text;
  return {text.data(), std::to_chars(text.data(), text.data() + text.size(), number).ptr};
}

std::optional<std::string> TextOf(const File& file, const Column& column, const std::optional<std::string>& stored) {
  if (column.type == ColumnType::Boolean) return stored ? "True" : "False";
  if (!stored) return std::nullopt;
  switch (column.type) {
    case ColumnType::Byte:
      return Decimal<std::uint8_t>(*stored);
    case ColumnType::Integer:
      return Decimal<std::int16_t>(*stored);
    case ColumnType::Long:
      return Decimal<std::int32_t>(*stored);
    case ColumnType::Single:
      return Decimal<float>(*stored);
    case ColumnType::Double:
      return Decimal<double>(*stored);
    case ColumnType::Text:
      return DecodeText(*stored);
    case ColumnType::Memo:
      return DecodeText(file.ReadLongValue(*stored));
    default:
      return std::nullopt;
  }
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
