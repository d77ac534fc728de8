#include "formats/jet/table_definition.h"

#include <algorithm>

#include "formats/jet/engine_error.h"
#include "formats/jet/stored_text.h"
#include "formats/text/text.h"

namespace parvex::jet {

namespace {

// Places in the first page of a table definition and the sizes of its lists.
constexpr std::size_t kColumnCountWithDeletedAt = 0x29;
constexpr std::size_t kVariableCountAt = 0x2B;
constexpr std::size_t kColumnCountAt = 0x2D;
constexpr std::size_t kIndexNameCountAt = 0x2F;
constexpr std::size_t kIndexTreeCountAt = 0x33;
constexpr std::size_t kOwnedPagesAt = 0x37;
constexpr std::size_t kPagesWithRoomAt = 0x3B;
constexpr std::size_t kListsAt = 0x3F;
constexpr std::size_t kTreeCounterSize = 12;
constexpr std::size_t kColumnSize = 25;
constexpr std::size_t kTreeSize = 52;
constexpr std::size_t kTreeColumns = 10;
constexpr std::size_t kIndexNameSize = 28;

constexpr std::size_t kMostColumns = 255;
/// Of a Decimal.
constexpr int kMostDigits = 28;

/// Stands in table definitions and their columns for no known reason; the engine writes it too.
constexpr std::uint32_t kDefinitionMark = 1625;

/// Reads the bytes of a table definition one after the other; behind their end it yields zeros and remembers that.
class DefinitionReader {
 public:
  explicit DefinitionReader(std::string_view bytes) : bytes_(bytes) {}
  std::size_t at = 0;
  bool overrun = false;

  std::string_view Take(std::size_t length) {
    if (length > bytes_.size() - std::min(at, bytes_.size())) {
      overrun = true;
      return {};
    }
    at += length;
    return bytes_.substr(at - length, length);
  }
  /// A name: its length in bytes, then UTF-16.
  std::string TakeName() {
    const std::string_view length = Take(2);
    return overrun ? "" : Utf8FromUtf16Bytes(Take(Get16(length, 0)));
  }

 private:
  std::string_view bytes_;
};

Column DecodeColumn(std::string_view entry) {
  constexpr int kFixed = 0x01;
  constexpr int kAutonumber = 0x04 | 0x40;
  constexpr int kCompressed = 0x01;
  Column column;
  column.type = static_cast<ColumnType>(entry[0]);
  column.variableNumber = Get16(entry, 7);
  column.number = Get16(entry, 5);
  column.fixed = (entry[15] & kFixed) != 0;
  column.autonumber = (entry[15] & kAutonumber) != 0;
  column.compressed = (entry[16] & kCompressed) != 0;
  column.fixedOffset = Get16(entry, 21);
  column.size = Get16(entry, 23);
  if (column.type == ColumnType::Decimal) column.scale = ByteAt(entry, 12);
  return column;
}

Index DecodeTree(std::string_view entry) {
  constexpr std::uint16_t kNoColumn = 0xFFFF;
  Index index;
  for (std::size_t i = 0; i < kTreeColumns; ++i) {
    const std::uint16_t number = Get16(entry, 4 + 3 * i);
    if (number != kNoColumn) index.columnNumbers.push_back(number);
  }
  return index;
}

std::vector<Column> TakeColumns(DefinitionReader& reader, std::size_t count) {
  std::vector<Column> columns;
  for (std::size_t i = 0; i < count && !reader.overrun; ++i) {
    const std::string_view entry = reader.Take(kColumnSize);
    if (!reader.overrun) columns.push_back(DecodeColumn(entry));
  }
  for (Column& column : columns) column.name = reader.TakeName();
  return columns;
}

/// Nothing when a name stands for an index that is not there.
std::optional<std::vector<Index>> TakeIndexes(DefinitionReader& reader, std::size_t treeCount, std::size_t nameCount) {
  std::vector<Index> indexes;
  for (std::size_t i = 0; i < treeCount && !reader.overrun; ++i) {
    const std::string_view entry = reader.Take(kTreeSize);
    if (!reader.overrun) indexes.push_back(DecodeTree(entry));
  }
  // Several names may stand for one index.
  std::vector<std::size_t> namedTrees;
  for (std::size_t i = 0; i < nameCount && !reader.overrun; ++i) {
    const std::string_view entry = reader.Take(kIndexNameSize);
    if (!reader.overrun) namedTrees.push_back(Get32(entry, 8));
  }
  for (const std::size_t tree : namedTrees) {
    if (tree >= indexes.size()) return std::nullopt;
    indexes[tree].name = reader.TakeName();
  }
  return indexes;
}

/// Bytes that a fixed column of a type takes; nothing for a type that has no fixed size.
std::optional<std::size_t> FixedSize(ColumnType type) {
  switch (type) {
    case ColumnType::Byte:
      return 1;
    case ColumnType::Integer:
      return 2;
    case ColumnType::Long:
    case ColumnType::Single:
      return 4;
    case ColumnType::Currency:
    case ColumnType::Double:
    case ColumnType::DateTime:
      return 8;
    case ColumnType::Guid:
      return 16;
    case ColumnType::Decimal:
      return 17;
    default:
      return std::nullopt;
  }
}

/// Types that are not known here are no damage: their values are passed over.
bool SoundColumn(const Column& column, const RowShape& shape) {
  const bool fitting =
      column.fixed ? column.fixedOffset + column.size < kPageSize : column.variableNumber < shape.variableCount;
  if (column.number >= shape.columnCount || !fitting) return false;
  if (IsLongValue(column.type)) return !column.fixed;
  if (column.type == ColumnType::Boolean) return column.fixed;
  const std::optional<std::size_t> size = FixedSize(column.type);
  return !column.fixed || !size || *size == column.size;
}

std::string ColumnEntry(const Column& column) {
  constexpr char kFixed = 0x01;
  constexpr char kMayBeNull = 0x02;
  std::string entry(1, static_cast<char>(column.type));
  Append32(entry, kDefinitionMark);
  Append16(entry, column.number);
  Append16(entry, column.variableNumber);
  Append16(entry, column.number);
  if (column.type == ColumnType::Decimal) {
    entry += {static_cast<char>(kMostDigits), static_cast<char>(column.scale)};
  } else {
    Append16(entry, IsText(column.type) ? kSortOrder : 0);
  }
  Append16(entry, 0);
  entry += static_cast<char>(kMayBeNull | (column.fixed ? kFixed : 0));
  entry += static_cast<char>(column.compressed ? 1 : 0);
  Append32(entry, 0);
  Append16(entry, column.fixedOffset);
  Append16(entry, column.size);
  return entry;
}

/// What stands before the lists; the length of it all is not known yet.
std::string DefinitionHead(const RowShape& shape, bool system, std::uint32_t maps) {
  std::string page{"\2\1\0\0\0\0\0\0", 8};
  Append32(page, 0);  // the length
  Append32(page, kDefinitionMark);
  Append32(page, 0);  // rows
  Append32(page, 0);  // last number counted
  Append32(page, 1);  // numbers are counted up
  page.append(12, '\0');
  page += system ? 'S' : 'N';
  Append16(page, shape.columnCount);
  Append16(page, shape.variableCount);
  Append16(page, shape.columnCount);
  Append32(page, 0);  // no index
  Append32(page, 0);
  return page + BytesOfPlace({maps, 0}) + BytesOfPlace({maps, 1});
}

}  // namespace

bool Index::Covers(const Column& column) const {
  return std::find(columnNumbers.begin(), columnNumbers.end(), column.number) != columnNumbers.end();
}

std::optional<std::size_t> TableDefinition::FindColumn(std::string_view name) const {
  for (std::size_t i = 0; i < shape.columns.size(); ++i) {
    if (EqualIgnoringCase(shape.columns[i].name, name)) return i;
  }
  return std::nullopt;
}

DecodedDefinition DecodeDefinition(std::string_view bytes) {
  DecodedDefinition decoded;
  TableDefinition& table = decoded.table;
  table.shape.columnCount = Get16(bytes, kColumnCountWithDeletedAt);
  table.shape.variableCount = Get16(bytes, kVariableCountAt);
  table.ownedPages = GetPlace(bytes, kOwnedPagesAt);
  table.pagesWithRoom = GetPlace(bytes, kPagesWithRoomAt);
  const std::size_t columnCount = Get16(bytes, kColumnCountAt);
  const std::size_t treeCount = Get32(bytes, kIndexTreeCountAt);
  if (columnCount > kMostColumns) return {{}, "a table has too many columns"};

  DefinitionReader reader(bytes);
  reader.Take(kListsAt);
  reader.Take(std::min(treeCount, bytes.size()) * kTreeCounterSize);
  table.shape.columns = TakeColumns(reader, columnCount);
  std::optional<std::vector<Index>> indexes = TakeIndexes(reader, treeCount, Get32(bytes, kIndexNameCountAt));
  if (!indexes) return {{}, "an index has no columns"};
  table.indexes = std::move(*indexes);
  if (reader.overrun) return {{}, "the definition of a table ends too early"};

  std::sort(table.shape.columns.begin(), table.shape.columns.end(),
            [](const Column& a, const Column& b) { return a.number < b.number; });
  for (const Column& column : table.shape.columns) {
    if (!SoundColumn(column, table.shape)) return {{}, "column '" + column.name + "' contradicts its table"};
  }
  return decoded;
}

std::string EncodeDefinition(const RowShape& shape, bool system, std::uint32_t maps) {
  std::string page = DefinitionHead(shape, system, maps);
  for (const Column& column : shape.columns) page += ColumnEntry(column);
  for (const Column& column : shape.columns) {
    const std::string name = Utf16Bytes(column.name);
    page += Bytes16(static_cast<std::uint16_t>(name.size())) + name;
  }
  std::uint8_t map = 2;
  for (const Column& column : shape.columns) {
    if (!IsLongValue(column.type)) continue;
    for (const std::string& bytes :
         {Bytes16(column.number), BytesOfPlace({maps, map}), BytesOfPlace({maps, static_cast<std::uint8_t>(map + 1)})})
      page += bytes;
    map = static_cast<std::uint8_t>(map + 2);
  }
  Append16(page, 0xFFFF);
  if (page.size() > kPageSize) Fail(EngineError::NotSupported, "A table has too many columns");
  Put32(page, 8, static_cast<std::uint32_t>(page.size() - 8));
  Put16(page, 2, static_cast<std::uint16_t>(kPageSize - page.size()));
  page.resize(kPageSize);
  return page;
}

}  // namespace parvex::jet
