#include "formats/jet/writer.h"

#include <cstring>

#include "formats/jet/file.h"
#include "formats/jet/stored_text.h"
#include "formats/jet/values.h"

namespace parvex::standin {

namespace {

using jet::ColumnType;
using jet::StoredValues;

constexpr std::uint16_t kCodePage = 1252;
/// 1 January 2003, counted in days from 30 December 1899.
constexpr double kCreated = 37622.0;

constexpr std::size_t kUsageMapSize = 69;

// Object ids of the catalogue that are no page numbers.
constexpr std::uint32_t kRootContainer = 0x0F000000;
constexpr std::uint32_t kTablesContainer = 0x0F000001;
constexpr std::uint32_t kDatabasesContainer = 0x0F000002;
constexpr std::uint32_t kRelationshipsContainer = 0x0F000003;
constexpr std::uint32_t kDatabaseObject = 0x10000000;

constexpr std::int16_t kDatabaseType = 2;
constexpr std::int16_t kContainerType = 3;
constexpr std::uint32_t kSystemFlag = 0x80000000u;
/// The owner that every database knows, and the right to do everything.
constexpr std::string_view kOwner = "\xA6\x33";
constexpr std::uint32_t kAllRights = 0x000FFFFF;

struct NewColumn {
  std::string name;
  ColumnType type;
  std::uint16_t size;      ///< bytes
  bool compressed = true;  ///< of meaning for texts
  std::uint8_t scale = 0;  ///< of a Decimal
};

bool IsFixed(ColumnType type) {
  return type != ColumnType::Text && type != ColumnType::Binary && !jet::IsLongValue(type);
}

jet::RowShape ShapeOf(const std::vector<NewColumn>& columns) {
  jet::RowShape shape;
  std::uint16_t fixedOffset = 0;
  for (const NewColumn& added : columns) {
    jet::Column column;
    column.name = added.name;
    column.type = added.type;
    column.fixed = IsFixed(added.type);
    column.compressed = added.compressed && jet::IsText(added.type);
    column.size = added.size;
    column.scale = added.scale;
    column.number = shape.columnCount++;
    column.fixedOffset = column.fixed ? fixedOffset : 0;
    column.variableNumber = shape.variableCount;
    if (!column.fixed) ++shape.variableCount;
    if (column.fixed && column.type != ColumnType::Boolean) {
      fixedOffset = static_cast<std::uint16_t>(fixedOffset + added.size);
    }
    shape.columns.push_back(std::move(column));
  }
  return shape;
}

std::string BytesOfDouble(double value) {
  std::string bytes(sizeof value, '\0');
  std::memcpy(bytes.data(), &value, sizeof value);
  return bytes;
}

std::string HeaderPage() {
  constexpr std::size_t kPasswordAt = 0x42;
  constexpr std::size_t kPasswordLength = 40;
  std::string page(jet::kFileStart);
  page += '\1';
  page.resize(jet::kPageSize);
  jet::Put16(page, 0x3A, jet::kSortOrder);
  jet::Put16(page, 0x3C, kCodePage);
  jet::Put32(page, 0x6E, jet::kSortOrder);
  page.replace(0x72, sizeof kCreated, BytesOfDouble(kCreated));
  // The password is masked with the day of creation; none at all therefore looks like that day, repeated.
  for (std::size_t i = 0; i < kPasswordLength; i += 4) {
    jet::Put32(page, kPasswordAt + i, static_cast<std::uint32_t>(kCreated));
  }
  jet::ToggleHeaderMask(page);
  return page;
}

/// A data page of usage maps that mark no page.
std::string UsageMapPage(std::size_t count) {
  jet::DataPage page;
  page.slots.assign(count, {.hidden = false, .pointer = false, .bytes = std::string(kUsageMapSize, '\0')});
  return jet::EncodeDataPage(page);
}

/// The map of the file's free pages: those that it does not have yet.
std::string FreePagesPage(std::size_t usedPages) {
  std::string record(kUsageMapSize, '\xFF');
  record.replace(0, 5, 5, '\0');
  for (std::size_t i = 0; i < usedPages; ++i) {
    char& byte = record.at(5 + i / 8);
    byte = static_cast<char>(byte & ~(1 << i % 8));
  }
  jet::DataPage page;
  page.slots.push_back({.hidden = false, .pointer = false, .bytes = record});
  return jet::EncodeDataPage(page);
}

const std::vector<NewColumn>& CatalogueColumns() {
  static const std::vector<NewColumn> columns{{"Id", ColumnType::Long, 4},
                                              {"ParentId", ColumnType::Long, 4},
                                              {"Name", ColumnType::Text, 510},
                                              {"Type", ColumnType::Integer, 2},
                                              {"DateCreate", ColumnType::DateTime, 8},
                                              {"DateUpdate", ColumnType::DateTime, 8},
                                              {"Owner", ColumnType::Binary, 510},
                                              {"Flags", ColumnType::Long, 4},
                                              {"Database", ColumnType::Memo, 0},
                                              {"Connect", ColumnType::Memo, 0},
                                              {"ForeignName", ColumnType::Text, 510},
                                              {"RmtInfoShort", ColumnType::Binary, 510},
                                              {"RmtInfoLong", ColumnType::LongBinary, 0},
                                              {"Lv", ColumnType::LongBinary, 0},
                                              {"LvProp", ColumnType::LongBinary, 0},
                                              {"LvModule", ColumnType::LongBinary, 0},
                                              {"LvExtra", ColumnType::LongBinary, 0}};
  return columns;
}

const std::vector<NewColumn>& RightsColumns() {
  static const std::vector<NewColumn> columns{{"ObjectId", ColumnType::Long, 4},
                                              {"SID", ColumnType::Binary, 510},
                                              {"ACM", ColumnType::Long, 4},
                                              {"FInheritable", ColumnType::Boolean, 1}};
  return columns;
}

const std::vector<NewColumn>& QueryColumns() {
  static const std::vector<NewColumn> columns{
      {"Attribute", ColumnType::Byte, 1},     {"Expression", ColumnType::Memo, 0}, {"Flag", ColumnType::Integer, 2},
      {"LvExtra", ColumnType::LongBinary, 0}, {"Name1", ColumnType::Text, 510},    {"Name2", ColumnType::Text, 510},
      {"ObjectId", ColumnType::Long, 4},      {"Order", ColumnType::Binary, 510}};
  return columns;
}

const std::vector<NewColumn>& RelationshipColumns() {
  static const std::vector<NewColumn> columns{{"ccolumn", ColumnType::Long, 4},
                                              {"grbit", ColumnType::Long, 4},
                                              {"icolumn", ColumnType::Long, 4},
                                              {"szColumn", ColumnType::Text, 510},
                                              {"szObject", ColumnType::Text, 510},
                                              {"szReferencedColumn", ColumnType::Text, 510},
                                              {"szReferencedObject", ColumnType::Text, 510},
                                              {"szRelationship", ColumnType::Text, 510}};
  return columns;
}

NewColumn ColumnOf(const JetColumn& column) {
  using Type = JetColumn::Type;
  const std::string& name = column.name;
  switch (column.type) {
    case Type::Text:
      break;
    case Type::Memo:
      return {name, ColumnType::Memo, 0, column.compressed};
    case Type::Boolean:
      return {name, ColumnType::Boolean, 1};
    case Type::Byte:
      return {name, ColumnType::Byte, 1};
    case Type::Integer:
      return {name, ColumnType::Integer, 2};
    case Type::Long:
      return {name, ColumnType::Long, 4};
    case Type::Single:
      return {name, ColumnType::Single, 4};
    case Type::Double:
      return {name, ColumnType::Double, 8};
    case Type::Currency:
      return {name, ColumnType::Currency, 8};
    case Type::DateTime:
      return {name, ColumnType::DateTime, 8};
    case Type::Guid:
      return {name, ColumnType::Guid, 16};
    case Type::Decimal:
      return {name, ColumnType::Decimal, 17, false, static_cast<std::uint8_t>(column.scale)};
    case Type::Binary:
      return {name, ColumnType::Binary, 510};
    case Type::LongBinary:
      return {name, ColumnType::LongBinary, 0};
  }
  return {name, ColumnType::Text, static_cast<std::uint16_t>(2 * column.size), column.compressed};
}

std::optional<std::string> StoredValue(const jet::Column& column, const std::optional<std::string>& value) {
  if (!value) return std::nullopt;
  switch (column.type) {
    case ColumnType::Currency:
    case ColumnType::DateTime:
    case ColumnType::Guid:
    case ColumnType::Decimal:
      if (value->size() == column.size) return value;
      break;
    case ColumnType::Binary:
      if (value->size() <= column.size) return value;
      break;
    case ColumnType::LongBinary:
      return jet::EncodeLongValue(*value);
    default:
      return jet::EncodeValue(column, *value);
  }
  jet::Fail(jet::EngineError::DataTypeConversion,
            "Column '" + column.name + "' cannot hold " + std::to_string(value->size()) + " bytes");
}

/// An object of the catalogue: a table, a container of objects, the database itself.
struct CatalogueEntry {
  std::uint32_t id;
  std::uint32_t parent;
  std::string name;
  std::int16_t type;
  std::uint32_t flags;
};

StoredValues CatalogueRow(const CatalogueEntry& entry) {
  StoredValues values(CatalogueColumns().size());
  values[0] = jet::Bytes32(entry.id);
  values[1] = jet::Bytes32(entry.parent);
  values[2] = jet::EncodeText(entry.name, true);
  values[3] = jet::Bytes16(static_cast<std::uint16_t>(entry.type));
  values[4] = values[5] = BytesOfDouble(kCreated);
  values[6] = std::string(kOwner);
  values[7] = jet::Bytes32(entry.flags);
  return values;
}

StoredValues RightsRow(const CatalogueEntry& entry) {
  return {jet::Bytes32(entry.id), std::string(kOwner), jet::Bytes32(kAllRights), std::nullopt};
}

struct NewTable {
  std::string name;
  std::vector<NewColumn> columns;
  bool system;
};

std::size_t UsageMapCount(const std::vector<NewColumn>& columns) {
  std::size_t count = 2;
  for (const NewColumn& column : columns) count += jet::IsLongValue(column.type) ? 2 : 0;
  return count;
}

}  // namespace

std::string MakeJetDatabase(std::span<const JetTable> tables) {
  // The definitions of the system tables have the pages that every Jet 4 database gives them.
  std::vector<NewTable> all{{"MSysObjects", CatalogueColumns(), true},
                            {"MSysACEs", RightsColumns(), true},
                            {"MSysQueries", QueryColumns(), true},
                            {"MSysRelationships", RelationshipColumns(), true}};
  const std::size_t systemTables = all.size();
  for (const JetTable& table : tables) {
    std::vector<NewColumn> columns;
    for (const JetColumn& column : table.columns) columns.push_back(ColumnOf(column));
    all.push_back({table.name, columns, false});
  }

  std::vector<CatalogueEntry> entries{
      {kTablesContainer, kRootContainer, "Tables", kContainerType, kSystemFlag},
      {kDatabasesContainer, kRootContainer, "Databases", kContainerType, kSystemFlag},
      {kRelationshipsContainer, kRootContainer, "Relationships", kContainerType, kSystemFlag},
      {kDatabaseObject, kDatabasesContainer, "MSysDb", kDatabaseType, kSystemFlag}};
  std::string definitions;
  std::string maps;
  const auto firstMapPage = static_cast<std::uint32_t>(jet::kCataloguePage + all.size());
  for (std::uint32_t i = 0; i < all.size(); ++i) {
    const NewTable& table = all[i];
    definitions += jet::EncodeDefinition(ShapeOf(table.columns), table.system, firstMapPage + i);
    maps += UsageMapPage(UsageMapCount(table.columns));
    entries.push_back(
        {jet::kCataloguePage + i, kTablesContainer, table.name, jet::kTableObject, table.system ? kSystemFlag : 0});
  }
  const std::size_t pages = jet::kCataloguePage + 2 * all.size();
  jet::File file(HeaderPage() + FreePagesPage(pages) + definitions + maps, "a new database");

  const jet::TableDefinition catalogue = file.ReadTable(jet::kCataloguePage);
  const jet::TableDefinition rights = file.ReadTable(jet::kCataloguePage + 1);
  for (const CatalogueEntry& entry : entries) {
    file.AddRow(catalogue, CatalogueRow(entry));
    file.AddRow(rights, RightsRow(entry));
  }
  for (std::size_t i = 0; i < tables.size(); ++i) {
    const auto page = static_cast<std::uint32_t>(jet::kCataloguePage + systemTables + i);
    const jet::TableDefinition table = file.ReadTable(page);
    for (const auto& row : tables[i].rows) {
      StoredValues values;
      for (std::size_t column = 0; column < table.shape.columns.size(); ++column) {
        values.push_back(StoredValue(table.shape.columns[column], row.at(column)));
      }
      file.AddRow(table, values);
    }
  }
  return file.Bytes();
}

}  // namespace parvex::standin
