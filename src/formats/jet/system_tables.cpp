#include "formats/jet/system_tables.h"

#include <cstring>

#include "formats/jet/engine_error.h"

namespace parvex::jet {

namespace {

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

std::vector<NewColumn> CatalogueColumns() {
  return {{"Id", ColumnType::Long, 4},
          {"ParentId", ColumnType::Long, 4},
          {"Name", ColumnType::Text, 255},
          {"Type", ColumnType::Integer, 2},
          {"DateCreate", ColumnType::DateTime, 8},
          {"DateUpdate", ColumnType::DateTime, 8},
          {"Owner", ColumnType::Binary, 255},
          {"Flags", ColumnType::Long, 4},
          {"Database", ColumnType::Memo, 0},
          {"Connect", ColumnType::Memo, 0},
          {"ForeignName", ColumnType::Text, 255},
          {"RmtInfoShort", ColumnType::Binary, 255},
          {"RmtInfoLong", ColumnType::LongBinary, 0},
          {"Lv", ColumnType::LongBinary, 0},
          {"LvProp", ColumnType::LongBinary, 0},
          {"LvModule", ColumnType::LongBinary, 0},
          {"LvExtra", ColumnType::LongBinary, 0}};
}

std::vector<NewColumn> RightsColumns() {
  return {{"ObjectId", ColumnType::Long, 4},
          {"SID", ColumnType::Binary, 255},
          {"ACM", ColumnType::Long, 4},
          {"FInheritable", ColumnType::Boolean, 1}};
}

std::vector<NewColumn> QueryColumns() {
  return {{"Attribute", ColumnType::Byte, 1},     {"Expression", ColumnType::Memo, 0}, {"Flag", ColumnType::Integer, 2},
          {"LvExtra", ColumnType::LongBinary, 0}, {"Name1", ColumnType::Text, 255},    {"Name2", ColumnType::Text, 255},
          {"ObjectId", ColumnType::Long, 4},      {"Order", ColumnType::Binary, 255}};
}

std::vector<NewColumn> RelationshipColumns() {
  return {{"ccolumn", ColumnType::Long, 4},
          {"grbit", ColumnType::Long, 4},
          {"icolumn", ColumnType::Long, 4},
          {"szColumn", ColumnType::Text, 255},
          {"szObject", ColumnType::Text, 255},
          {"szReferencedColumn", ColumnType::Text, 255},
          {"szReferencedObject", ColumnType::Text, 255},
          {"szRelationship", ColumnType::Text, 255}};
}

}  // namespace

const std::vector<NewTable>& SystemTables() {
  static const std::vector<NewTable> tables{{"MSysObjects", CatalogueColumns(), true},
                                            {"MSysACEs", RightsColumns(), true},
                                            {"MSysQueries", QueryColumns(), true},
                                            {"MSysRelationships", RelationshipColumns(), true}};
  return tables;
}

std::string BytesOfDouble(double value) {
  std::string bytes(sizeof value, '\0');
  std::memcpy(bytes.data(), &value, sizeof value);
  return bytes;
}

std::vector<CatalogueEntry> Containers() {
  return {{kTablesContainer, kRootContainer, "Tables", kContainerType, kSystemFlag},
          {kDatabasesContainer, kRootContainer, "Databases", kContainerType, kSystemFlag},
          {kRelationshipsContainer, kRootContainer, "Relationships", kContainerType, kSystemFlag},
          {kDatabaseObject, kDatabasesContainer, "MSysDb", kDatabaseType, kSystemFlag}};
}

CatalogueEntry EntryOfTable(const NewTable& table, std::uint32_t definitionPage) {
  return {definitionPage, kTablesContainer, table.name, kTableObject, table.system ? kSystemFlag : 0};
}

StoredValues CatalogueRow(const CatalogueEntry& entry, const TextForm& form) {
  const std::optional<std::string> name = form.Encode(entry.name, true);
  if (!name) {
    Fail(EngineError::DataTypeConversion, "the code page of the file lacks a character of \"" + entry.name + "\"");
  }
  StoredValues values(SystemTables().front().columns.size());
  values[0] = Bytes32(entry.id);
  values[1] = Bytes32(entry.parent);
  values[2] = name;
  values[3] = Bytes16(static_cast<std::uint16_t>(entry.type));
  values[4] = values[5] = BytesOfDouble(kCreated);
  values[6] = std::string(kOwner);
  values[7] = Bytes32(entry.flags);
  return values;
}

StoredValues RightsRow(const CatalogueEntry& entry) {
  return {Bytes32(entry.id), std::string(kOwner), Bytes32(kAllRights), std::nullopt};
}

}  // namespace parvex::jet
