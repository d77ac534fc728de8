#include "formats/jet/writer.h"

#include "formats/jet/file.h"
#include "formats/jet/system_tables.h"
#include "formats/jet/values.h"

namespace parvex::standin {

namespace {

using jet::ColumnType;
using jet::NewColumn;
using jet::NewTable;
using jet::Version;

/// A usage map inside its record: its kind, the first page, and a bit for each of 1,024 pages (Jet 3) or 512.
std::size_t UsageMapSize(Version version) { return version == Version::Jet3 ? 5 + 128 : 5 + 64; }
std::size_t UsageMapsPerPage(Version version) { return version == Version::Jet3 ? 15 : 57; }

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
      return {name, ColumnType::Binary, 255};
    case Type::LongBinary:
      return {name, ColumnType::LongBinary, 0};
  }
  return {name, ColumnType::Text, static_cast<std::uint16_t>(column.size), column.compressed};
}

std::optional<std::string> StoredValue(const jet::Column& column, const std::optional<std::string>& value,
                                       const jet::TextForm& form) {
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
      return jet::EncodeValue(column, *value, form);
  }
  jet::Fail(jet::EngineError::DataTypeConversion,
            "column \"" + column.name + "\" cannot hold " + std::to_string(value->size()) + " bytes");
}

jet::RowShape ShapeOf(Version version, const std::vector<NewColumn>& columns) {
  jet::RowShape shape;
  shape.version = version;
  std::uint16_t fixedOffset = 0;
  for (const NewColumn& added : columns) {
    if (version == Version::Jet3 && added.type == ColumnType::Decimal) {
      jet::Fail(jet::EngineError::NotSupported,
                "Jet 3 has no Decimal, as which column \"" + added.name + "\" is asked for");
    }
    jet::Column column;
    column.name = added.name;
    column.type = added.type;
    const bool sized = added.type == ColumnType::Text || added.type == ColumnType::Binary;
    column.fixed = !sized && !jet::IsLongValue(added.type);
    column.compressed = version == Version::Jet4 && added.compressed && jet::IsText(added.type);
    column.size = sized && version == Version::Jet4 ? static_cast<std::uint16_t>(2 * added.size) : added.size;
    if (added.type == ColumnType::Decimal) column.scale = added.scale;
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

std::string HeaderPage(Version version) {
  constexpr std::size_t kPasswordAt = 0x42;
  constexpr std::size_t kPasswordLength = 40;
  std::string page(jet::kFileStart);
  page += static_cast<char>(version);
  page.resize(jet::PageSize(version));
  jet::Put16(page, 0x3A, jet::kSortOrder);
  jet::Put16(page, 0x3C, jet::kCodePage);
  if (version == Version::Jet4) {
    jet::Put32(page, 0x6E, jet::kSortOrder);
    page.replace(0x72, sizeof jet::kCreated, jet::BytesOfDouble(jet::kCreated));
    // The password is masked with the day of creation; none at all therefore looks like that day, repeated.
    for (std::size_t i = 0; i < kPasswordLength; i += 4) {
      jet::Put32(page, kPasswordAt + i, static_cast<std::uint32_t>(jet::kCreated));
    }
  }
  jet::ToggleHeaderMask(page, version);
  return page;
}

/// The map of the file's free pages: those that it does not have yet.
std::string FreePagesPage(Version version, std::size_t usedPages) {
  std::string record(UsageMapSize(version), '\xFF');
  record.replace(0, 5, 5, '\0');
  for (std::size_t i = 0; i < usedPages; ++i) {
    char& byte = record.at(5 + i / 8);
    byte = static_cast<char>(byte & ~(1 << i % 8));
  }
  return jet::EncodeDataPage({.version = version, .slots = {{.bytes = record}}});
}

/// The usage maps of one table, which mark no page: their places, and the data pages that hold them, from `firstPage`.
struct UsageMaps {
  std::vector<jet::RowPlace> places;
  std::string pages;
};

UsageMaps MapsOf(Version version, const NewTable& table, std::uint32_t firstPage) {
  std::size_t count = 2;
  for (const NewColumn& column : table.columns) count += jet::IsLongValue(column.type) ? 2 : 0;
  UsageMaps maps;
  for (std::uint32_t page = firstPage; maps.places.size() < count; ++page) {
    jet::DataPage holder{.version = version, .slots = {}};
    while (maps.places.size() < count && holder.slots.size() < UsageMapsPerPage(version)) {
      maps.places.push_back({page, static_cast<std::uint8_t>(holder.slots.size())});
      holder.slots.push_back({.bytes = std::string(UsageMapSize(version), '\0')});
    }
    maps.pages += jet::EncodeDataPage(holder);
  }
  return maps;
}

/// A database whose tables have no rows, the system's among them.
jet::File WithoutRows(Version version, const std::vector<NewTable>& tables) {
  const jet::TextForm form =
      version == Version::Jet3 ? jet::TextForm(jet::WesternCodePage(jet::kCodePage)) : jet::TextForm();
  const std::size_t firstMapPage = jet::kCataloguePage + tables.size();
  std::string definitions;
  std::string maps;
  for (const NewTable& table : tables) {
    const std::size_t nextPage = firstMapPage + maps.size() / jet::PageSize(version);
    const UsageMaps own = MapsOf(version, table, static_cast<std::uint32_t>(nextPage));
    definitions += jet::EncodeDefinition(form, ShapeOf(version, table.columns), table.system, own.places);
    maps += own.pages;
  }
  const std::size_t pages = firstMapPage + maps.size() / jet::PageSize(version);
  return {HeaderPage(version) + FreePagesPage(version, pages) + definitions + maps, "a new database"};
}

void FillCatalogue(jet::File& file, const std::vector<NewTable>& tables) {
  std::vector<jet::CatalogueEntry> entries = jet::Containers();
  for (std::uint32_t i = 0; i < tables.size(); ++i) {
    entries.push_back(jet::EntryOfTable(tables[i], jet::kCataloguePage + i));
  }
  const jet::TableDefinition catalogue = file.ReadTable(jet::kCataloguePage);
  const jet::TableDefinition rights = file.ReadTable(jet::kCataloguePage + 1);
  for (const jet::CatalogueEntry& entry : entries) {
    file.AddRow(catalogue, jet::CatalogueRow(entry, file.Texts()));
    file.AddRow(rights, jet::RightsRow(entry));
  }
}

void Fill(jet::File& file, std::uint32_t definitionPage, const JetTable& made) {
  const jet::TableDefinition table = file.ReadTable(definitionPage);
  for (const auto& row : made.rows) {
    jet::StoredValues values;
    for (std::size_t column = 0; column < table.shape.columns.size(); ++column) {
      values.push_back(StoredValue(table.shape.columns[column], row.at(column), file.Texts()));
    }
    file.AddRow(table, values);
  }
}

}  // namespace

std::string MakeJetDatabase(std::span<const JetTable> tables, Version version) {
  std::vector<NewTable> all = jet::SystemTables();
  const auto firstPage = static_cast<std::uint32_t>(jet::kCataloguePage + all.size());
  for (const JetTable& table : tables) {
    std::vector<NewColumn> columns;
    for (const JetColumn& column : table.columns) columns.push_back(ColumnOf(column));
    all.push_back({table.name, columns, false});
  }
  jet::File file = WithoutRows(version, all);
  FillCatalogue(file, all);
  for (std::uint32_t i = 0; i < tables.size(); ++i) Fill(file, firstPage + i, tables[i]);
  return file.Bytes();
}

}  // namespace parvex::standin
