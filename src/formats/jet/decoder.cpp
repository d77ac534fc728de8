#include "formats/jet/decoder.h"

#include "formats/jet/values.h"

namespace parvex::jet {

namespace {

class Decoder {
 public:
  explicit Decoder(const File& file) : file_(file) {}

  std::optional<std::string> TextOf(const Column& column, const std::optional<std::string>& stored) {
    if (!stored) return column.type == ColumnType::Boolean ? std::optional<std::string>("False") : std::nullopt;
    return DecodeValue(column, column.type == ColumnType::Memo ? LongValue(*stored) : *stored, file_.Texts());
  }

 private:
  /// Sound memos have bytes of their own; rows that share one would make a small file a large table.
  std::string LongValue(const std::string& stored) {
    std::string bytes = file_.ReadLongValue(stored);
    longValueBytes_ += bytes.size();
    if (longValueBytes_ > file_.Bytes().size()) {
      Fail(EngineError::UnrecognizedFormat,
           "the database is damaged (memos share their bytes): \"" + file_.Name() + "\"");
    }
    return bytes;
  }

  const File& file_;
  std::size_t longValueBytes_ = 0;
};

}  // namespace

Table DecodeTable(const File& file, std::uint32_t definitionPage) {
  TableDefinition definition = file.ReadTable(definitionPage);
  Decoder decoder(file);
  std::vector<TextRow> rows;
  for (Row& row : file.ReadRows(definition)) {
    std::vector<std::optional<std::string>> texts;
    for (std::size_t i = 0; i < definition.shape.columns.size(); ++i) {
      texts.push_back(decoder.TextOf(definition.shape.columns[i], row.values[i]));
    }
    rows.push_back({std::move(row), std::move(texts)});
  }
  return {std::move(definition), std::move(rows)};
}

}  // namespace parvex::jet
