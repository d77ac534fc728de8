#include "formats/jet/table_definition.h"

#include <algorithm>

#include "formats/jet/engine_error.h"
#include "formats/text/text.h"

namespace parvex::jet {

namespace {

/// Places in the first page of a table definition and in the entries of its lists, and the sizes of these.
struct Layout {
  // in the first page
  std::size_t rowCount;
  std::size_t tableType;
  std::size_t columnCountWithDeleted;
  std::size_t variableCount;
  std::size_t columnCount;
  std::size_t indexNameCount;
  std::size_t indexTreeCount;
  std::size_t ownedPages;
  std::size_t pagesWithRoom;
  std::size_t lists;
  std::size_t treeCounterSize;
  // in a column
  std::size_t columnSize;
  std::size_t number;
  std::size_t variableNumber;
  std::size_t repeatedNumber;
  std::size_t sortOrder;
  std::size_t flags;
  std::size_t fixedOffset;
  std::size_t valueSize;
  // in an index tree and an index name
  std::size_t treeSize;
  std::size_t treeColumns;
  std::size_t indexNameSize;
  std::size_t tree;
  /// Bytes of a name's length, which stands before it.
  std::size_t nameLengthSize;
};

constexpr Layout kJet3{.rowCount = 0x0C,
                       .tableType = 0x14,
                       .columnCountWithDeleted = 0x15,
                       .variableCount = 0x17,
                       .columnCount = 0x19,
                       .indexNameCount = 0x1B,
                       .indexTreeCount = 0x1F,
                       .ownedPages = 0x23,
                       .pagesWithRoom = 0x27,
                       .lists = 0x2B,
                       .treeCounterSize = 8,
                       .columnSize = 18,
                       .number = 1,
                       .variableNumber = 3,
                       .repeatedNumber = 5,
                       .sortOrder = 7,
                       .flags = 13,
                       .fixedOffset = 14,
                       .valueSize = 16,
                       .treeSize = 39,
                       .treeColumns = 0,
                       .indexNameSize = 20,
                       .tree = 4,
                       .nameLengthSize = 1};

constexpr Layout kJet4{.rowCount = 0x10,
                       .tableType = 0x28,
                       .columnCountWithDeleted = 0x29,
                       .variableCount = 0x2B,
                       .columnCount = 0x2D,
                       .indexNameCount = 0x2F,
                       .indexTreeCount = 0x33,
                       .ownedPages = 0x37,
                       .pagesWithRoom = 0x3B,
                       .lists = 0x3F,
                       .treeCounterSize = 12,
                       .columnSize = 25,
                       .number = 5,
                       .variableNumber = 7,
                       .repeatedNumber = 9,
                       .sortOrder = 11,
                       .flags = 15,
                       .fixedOffset = 21,
                       .valueSize = 23,
                       .treeSize = 52,
                       .treeColumns = 4,
                       .indexNameSize = 28,
                       .tree = 8,
                       .nameLengthSize = 2};

const Layout& LayoutOf(Version version) { return version == Version::Jet3 ? kJet3 : kJet4; }

/// Columns that an index may have.
constexpr std::size_t kTreeColumns = 10;
constexpr std::size_t kLengthAt = 8;

constexpr std::size_t kMostColumns = 255;
/// Of a Decimal.
constexpr int kMostDigits = 28;

// Of Jet 4 only. The mark stands in definitions and in their columns for no known reason; the engine writes it too.
constexpr std::uint32_t kDefinitionMark = 1625;
constexpr std::size_t kDefinitionMarkAt = 12;
constexpr std::size_t kCountedUpAt = 0x18;
constexpr std::size_t kColumnMarkAt = 1;
constexpr std::size_t kCompressedAt = 16;

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
  /// A name: its length in bytes, then those.
  std::string TakeName(const TextForm& form) {
    const std::string_view length = Take(LayoutOf(form.FileVersion()).nameLengthSize);
    if (overrun) return "";
    return form.DecodePlain(Take(length.size() == 1 ? ByteAt(length, 0) : Get16(length, 0)));
  }

 private:
  std::string_view bytes_;
};

Column DecodeColumn(Version version, std::string_view entry) {
  constexpr int kFixed = 0x01;
  constexpr int kAutonumber = 0x04 | 0x40;
  constexpr int kCompressed = 0x01;
  const Layout& at = LayoutOf(version);
  Column column;
  column.type = static_cast<ColumnType>(entry[0]);
  column.variableNumber = Get16(entry, at.variableNumber);
  column.number = Get16(entry, at.number);
  column.fixed = (entry[at.flags] & kFixed) != 0;
  column.autonumber = (entry[at.flags] & kAutonumber) != 0;
  column.compressed = version == Version::Jet4 && (entry[kCompressedAt] & kCompressed) != 0;
  column.fixedOffset = Get16(entry, at.fixedOffset);
  column.size = Get16(entry, at.valueSize);
  // A Decimal has its digits and its places where other columns have their sort order. Jet 3 made none.
  if (version == Version::Jet4 && column.type == ColumnType::Decimal) column.scale = ByteAt(entry, at.sortOrder + 1);
  return column;
}

Index DecodeTree(const Layout& at, std::string_view entry) {
  constexpr std::uint16_t kNoColumn = 0xFFFF;
  Index index;
  for (std::size_t i = 0; i < kTreeColumns; ++i) {
    const std::uint16_t number = Get16(entry, at.treeColumns + 3 * i);
    if (number != kNoColumn) index.columnNumbers.push_back(number);
  }
  return index;
}

std::vector<Column> TakeColumns(const TextForm& form, DefinitionReader& reader, std::size_t count) {
  std::vector<Column> columns;
  for (std::size_t i = 0; i < count && !reader.overrun; ++i) {
    const std::string_view entry = reader.Take(LayoutOf(form.FileVersion()).columnSize);
    if (!reader.overrun) columns.push_back(DecodeColumn(form.FileVersion(), entry));
  }
  for (Column& column : columns) column.name = reader.TakeName(form);
  return columns;
}

/// Nothing when a name stands for an index that is not there.
std::optional<std::vector<Index>> TakeIndexes(const TextForm& form, DefinitionReader& reader, std::size_t treeCount,
                                              std::size_t nameCount) {
  const Layout& at = LayoutOf(form.FileVersion());
  std::vector<Index> indexes;
  for (std::size_t i = 0; i < treeCount && !reader.overrun; ++i) {
    const std::string_view entry = reader.Take(at.treeSize);
    if (!reader.overrun) indexes.push_back(DecodeTree(at, entry));
  }
  // Several names may stand for one index.
  std::vector<std::size_t> namedTrees;
  for (std::size_t i = 0; i < nameCount && !reader.overrun; ++i) {
    const std::string_view entry = reader.Take(at.indexNameSize);
    if (!reader.overrun) namedTrees.push_back(Get32(entry, at.tree));
  }
  for (const std::size_t tree : namedTrees) {
    if (tree >= indexes.size()) return std::nullopt;
    indexes[tree].name = reader.TakeName(form);
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
  const bool fitting = column.fixed ? column.fixedOffset + column.size < PageSize(shape.version)
                                    : column.variableNumber < shape.variableCount;
  if (column.number >= shape.columnCount || !fitting) return false;
  if (IsLongValue(column.type)) return !column.fixed;
  if (column.type == ColumnType::Boolean) return column.fixed;
  const std::optional<std::size_t> size = FixedSize(column.type);
  return !column.fixed || !size || *size == column.size;
}

void PutByte(std::string& bytes, std::size_t at, int value) { bytes[at] = static_cast<char>(value); }

std::string ColumnEntry(Version version, const Column& column) {
  constexpr int kFixed = 0x01;
  constexpr int kMayBeNull = 0x02;
  const Layout& at = LayoutOf(version);
  std::string entry(at.columnSize, '\0');
  PutByte(entry, 0, static_cast<int>(column.type));
  Put16(entry, at.number, column.number);
  Put16(entry, at.variableNumber, column.variableNumber);
  Put16(entry, at.repeatedNumber, column.number);
  PutByte(entry, at.flags, kMayBeNull | (column.fixed ? kFixed : 0));
  Put16(entry, at.fixedOffset, column.fixedOffset);
  Put16(entry, at.valueSize, column.size);
  if (version == Version::Jet3 || IsText(column.type)) Put16(entry, at.sortOrder, kSortOrder);
  if (version == Version::Jet3) {
    Put16(entry, at.sortOrder + 2, kCodePage);
  } else {
    Put32(entry, kColumnMarkAt, kDefinitionMark);
    PutByte(entry, kCompressedAt, column.compressed ? 1 : 0);
  }
  if (column.scale) {
    PutByte(entry, at.sortOrder, kMostDigits);
    PutByte(entry, at.sortOrder + 1, *column.scale);
  }
  return entry;
}

/// What stands before the lists, of a table without rows and indexes; the length of it all is not known yet.
std::string DefinitionHead(const RowShape& shape, bool system, const std::vector<RowPlace>& maps) {
  const Layout& at = LayoutOf(shape.version);
  std::string page(at.lists, '\0');
  PutByte(page, 0, static_cast<int>(PageType::TableDefinition));
  PutByte(page, 1, 1);
  PutByte(page, at.tableType, system ? 'S' : 'N');
  Put16(page, at.columnCountWithDeleted, shape.columnCount);
  Put16(page, at.variableCount, shape.variableCount);
  Put16(page, at.columnCount, shape.columnCount);
  PutPlace(page, at.ownedPages, maps.at(0));
  PutPlace(page, at.pagesWithRoom, maps.at(1));
  if (shape.version == Version::Jet4) {
    Put32(page, kDefinitionMarkAt, kDefinitionMark);
    Put32(page, kCountedUpAt, 1);
  }
  return page;
}

/// The usage maps of the columns of long values, behind the two of the table.
std::string LongValueMaps(const RowShape& shape, const std::vector<RowPlace>& maps) {
  std::string list;
  std::size_t next = 2;
  for (const Column& column : shape.columns) {
    if (!IsLongValue(column.type)) continue;
    list += Bytes16(column.number) + BytesOfPlace(maps.at(next)) + BytesOfPlace(maps.at(next + 1));
    next += 2;
  }
  return list + Bytes16(0xFFFF);
}

std::string NameEntry(const TextForm& form, const std::string& name) {
  const std::optional<std::string> bytes = form.EncodePlain(name);
  if (!bytes) Fail(EngineError::DataTypeConversion, "the code page of the file lacks a character of \"" + name + "\"");
  const std::string length = Bytes16(static_cast<std::uint16_t>(bytes->size()));
  return length.substr(0, LayoutOf(form.FileVersion()).nameLengthSize) + *bytes;
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

DecodedDefinition DecodeDefinition(const TextForm& form, std::string_view bytes) {
  const Layout& at = LayoutOf(form.FileVersion());
  DecodedDefinition decoded;
  TableDefinition& table = decoded.table;
  table.shape.version = form.FileVersion();
  table.shape.columnCount = Get16(bytes, at.columnCountWithDeleted);
  table.shape.variableCount = Get16(bytes, at.variableCount);
  table.ownedPages = GetPlace(bytes, at.ownedPages);
  table.pagesWithRoom = GetPlace(bytes, at.pagesWithRoom);
  const std::size_t columnCount = Get16(bytes, at.columnCount);
  const std::size_t treeCount = Get32(bytes, at.indexTreeCount);
  // A row of Jet 3 counts its columns in one byte, the deleted ones among them.
  const bool tooMany = table.shape.version == Version::Jet3 &&
                       (table.shape.columnCount > kMostColumns || table.shape.variableCount > kMostColumns);
  if (columnCount > kMostColumns || tooMany) return {{}, "a table has too many columns"};

  DefinitionReader reader(bytes);
  reader.Take(at.lists);
  reader.Take(std::min(treeCount, bytes.size()) * at.treeCounterSize);
  table.shape.columns = TakeColumns(form, reader, columnCount);
  std::optional<std::vector<Index>> indexes = TakeIndexes(form, reader, treeCount, Get32(bytes, at.indexNameCount));
  if (!indexes) return {{}, "an index has no columns"};
  table.indexes = std::move(*indexes);
  if (reader.overrun) return {{}, "the definition of a table ends too early"};

  std::sort(table.shape.columns.begin(), table.shape.columns.end(),
            [](const Column& a, const Column& b) { return a.number < b.number; });
  for (const Column& column : table.shape.columns) {
    if (!SoundColumn(column, table.shape)) return {{}, "column \"" + column.name + "\" contradicts its table"};
  }
  return decoded;
}

std::string EncodeDefinition(const TextForm& form, const RowShape& shape, bool system,
                             const std::vector<RowPlace>& maps) {
  const std::size_t pageSize = PageSize(shape.version);
  std::string page = DefinitionHead(shape, system, maps);
  for (const Column& column : shape.columns) page += ColumnEntry(shape.version, column);
  for (const Column& column : shape.columns) page += NameEntry(form, column.name);
  page += LongValueMaps(shape, maps);
  if (page.size() > pageSize) Fail(EngineError::NotSupported, "a table has too many columns");
  // Jet 4 counts what stands behind the place of the next page, and the bytes that are left.
  if (shape.version == Version::Jet3) {
    Put32(page, kLengthAt, static_cast<std::uint32_t>(page.size()));
    page.replace(2, 2, "VC");
  } else {
    Put32(page, kLengthAt, static_cast<std::uint32_t>(page.size() - 8));
    Put16(page, 2, static_cast<std::uint16_t>(pageSize - page.size()));
  }
  page.resize(pageSize);
  return page;
}

std::size_t RowCountAt(Version version) { return LayoutOf(version).rowCount; }

}  // namespace parvex::jet
