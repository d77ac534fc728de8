#include "formats/jet/decoder.h"

#include "formats/jet/values.h"

namespace parvex::jet {

namespace {

class Decoder {
 public:
  explicit Decoder(const File& file) : file_(file), leftOfLongValues_(file.Bytes().size()) {}

  std::optional<std::string> TextOf(const Column& column, const std::optional<std::string>& stored) {
    if (!stored) return column.type == ColumnType::Boolean ? std::optional<std::string>("False") : std::nullopt;
    return DecodeValue(column,
                       column.type == ColumnType::Memo ? file_.ReadLongValue(*stored, leftOfLongValues_) : *stored,
                       file_.Texts());
  }

 private:
  const File& file_;
  std::size_t leftOfLongValues_;
};

}  // namespace

Table DecodeTable(const File& file, std::uint32_t definitionPage) {
  TableDefinition definition = file.ReadTable(definitionPage);
  Decoder decoder(file);
  std::vector<TextRow> rows;
  for (Row& row : file.ReadRows(definition)) {
    std::vector<std::optional<std::string>> texts;
    texts.reserve(definition.shape.columns.size());
    for (std::size_t i = 0; i < definition.shape.columns.size(); ++i) {
      texts.push_back(decoder.TextOf(definition.shape.columns[i], row.values[i]));
    }
    rows.push_back({std::move(row), std::move(texts)});
  }
  return {std::move(definition), std::move(rows)};
}

}  // namespace parvex::jet
