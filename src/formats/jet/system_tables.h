#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "formats/jet/format.h"
#include "formats/jet/stored_text.h"

namespace parvex::jet {

struct NewColumn {
  std::string name;
  ColumnType type;
  std::uint16_t size;  ///< bytes; characters of a text, of which Jet 4 has two bytes each, and so of a binary column
  bool compressed = true;  ///< of meaning for texts
  std::uint8_t scale = 0;  ///< of a Decimal
};

struct NewTable {
  std::string name;
  std::vector<NewColumn> columns;
  bool system;
};

/// The tables that every database has, in the order of their definitions, which begin on kCataloguePage: the catalogue,
/// the rights of its objects, queries, relationships.
const std::vector<NewTable>& SystemTables();

/// 1 January 2003, counted in days from 30 December 1899: when all databases that are made here were.
inline constexpr double kCreated = 37622.0;
std::string BytesOfDouble(double value);

/// An object of the catalogue: a table, a container of objects, the database itself.
struct CatalogueEntry {
  std::uint32_t id;
  std::uint32_t parent;
  std::string name;
  std::int16_t type;
  std::uint32_t flags;
};

/// The objects that are no tables.
std::vector<CatalogueEntry> Containers();
CatalogueEntry EntryOfTable(const NewTable& table, std::uint32_t definitionPage);

StoredValues CatalogueRow(const CatalogueEntry& entry, const TextForm& form);
StoredValues RightsRow(const CatalogueEntry& entry);

}  // namespace parvex::jet
