#include "adapters/posix/libmdb_table.h"

#include <mdbtools.h>

#include <algorithm>
#include <array>
#include <charconv>
#include <cstring>

namespace parvex::posix {

namespace {

using jet::ColumnType;

struct CloseDatabase {
  void operator()(MdbHandle* database) const { mdb_close(database); }
};
struct FreeTable {
  void operator()(MdbTableDef* table) const { mdb_free_tabledef(table); }
};
struct FreeText {
  void operator()(char* text) const { g_free(text); }
};
using Handle = std::unique_ptr<MdbHandle, CloseDatabase>;

[[noreturn]] void Unreadable(const jet::File& file) {
  jet::Fail(jet::EngineError::UnrecognizedFormat, "The database cannot be read: '" + file.Name() + "'");
}

/// libmdb on the bytes of a file, which have to outlive it.
Handle OpenDatabase(const jet::File& file) {
  // Opened for reading, libmdb does not write to the bytes.
  char* bytes = const_cast<char*>(file.Bytes().data());
  Handle database(mdb_open_buffer(bytes, file.Bytes().size(), MDB_NOFLAGS));
  if (!database) Unreadable(file);
  // Its own converter knows no characters beyond U+FFFF and follows an environment variable.
  const iconv_t converter = iconv_open("UTF-8", "UTF-16LE");
  if (converter == reinterpret_cast<iconv_t>(-1)) Unreadable(file);
  iconv_close(database->iconv_in);
  database->iconv_in = converter;
  mdb_set_date_fmt(database.get(), "%Y-%m-%d %H:%M:%S");
  return database;
}

/// A UTF-16 unit of two bytes takes three in UTF-8, a compressed one of one byte takes two.
std::size_t LongestTextInBytes(const jet::File& file, const jet::TableDefinition& table,
                               const std::vector<jet::Row>& rows) {
  std::size_t longest = MDB_BIND_SIZE;
  for (std::size_t i = 0; i < table.shape.columns.size(); ++i) {
    if (table.shape.columns[i].type != ColumnType::Memo) continue;
    for (const jet::Row& row : rows) {
      if (row.values[i]) longest = std::max(longest, 2 * file.ReadLongValue(*row.values[i]).size() + 16);
    }
  }
  return longest;
}

template <typename Number>
std::string ShortestDecimal(const std::string& bytes) {
  Number number;
  std::memcpy(&number, bytes.data(), sizeof number);
  std::array<char, 32> text;
  return {text.data(), std::to_chars(text.data(), text.data() + text.size(), number).ptr};
}

std::optional<std::string> TextOf(MdbHandle* database, const jet::Column& column,
                                  const std::optional<std::string>& stored, const MdbField& field) {
  if (column.type == ColumnType::Boolean) return stored ? "True" : "False";
  if (!stored) return std::nullopt;
  switch (column.type) {
    case ColumnType::Binary:
    case ColumnType::LongBinary:
      return std::nullopt;
    // The shortest text that reads as the same number, where libmdb would show the binary rounding.
    case ColumnType::Single:
      return ShortestDecimal<float>(*stored);
    case ColumnType::Double:
      return ShortestDecimal<double>(*stored);
    default:
      break;
  }
  if (field.siz == 0) return "";
  const std::unique_ptr<char, FreeText> text(
      mdb_col_to_string(database, database->pg_buf, field.start, static_cast<int>(column.type), field.siz));
  return text ? text.get() : "";
}

}  // namespace

jet::Table ReadTableByLibmdb(const jet::File& file, std::uint32_t definitionPage) {
  jet::TableDefinition definition = file.ReadTable(definitionPage);
  std::vector<jet::Row> stored = file.ReadRows(definition);
  const Handle database = OpenDatabase(file);
  mdb_set_bind_size(database.get(), LongestTextInBytes(file, definition, stored));

  MdbCatalogEntry entry{};
  entry.mdb = database.get();
  entry.object_type = MDB_TABLE;
  entry.table_pg = definitionPage;
  const std::unique_ptr<MdbTableDef, FreeTable> table(mdb_read_table(&entry));
  if (!table || mdb_read_columns(table.get()) == nullptr) Unreadable(file);
  const std::vector<jet::Column>& columns = definition.shape.columns;
  if (table->num_cols != columns.size()) Unreadable(file);

  std::array<MdbField, MDB_MAX_COLS> fields;
  std::vector<jet::TextRow> rows;
  for (jet::Row& row : stored) {
    int start = 0;
    std::size_t size = 0;
    if (mdb_read_pg(database.get(), row.stored.page) == 0 ||
        mdb_find_row(database.get(), row.stored.row, &start, &size) != 0 ||
        mdb_crack_row(table.get(), start & 0x1FFF, size, fields.data()) < 0) {
      Unreadable(file);
    }
    std::vector<std::optional<std::string>> texts;
    for (std::size_t i = 0; i < columns.size(); ++i) {
      texts.push_back(TextOf(database.get(), columns[i], row.values[i], fields[i]));
    }
    rows.push_back({std::move(row), std::move(texts)});
  }
  return {std::move(definition), std::move(rows)};
}

}  // namespace parvex::posix
