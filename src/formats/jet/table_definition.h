#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "formats/jet/format.h"
#include "formats/jet/stored_text.h"

namespace parvex::jet {

/// An index of a table. Its pages are never touched here, so a change that would need them changed is refused (3251).
struct Index {
  std::string name;
  std::vector<std::uint16_t> columnNumbers;

  bool Covers(const Column& column) const;
};

struct TableDefinition {
  std::uint32_t page = 0;
  RowShape shape;  ///< columns in the order of their numbers
  std::vector<Index> indexes;
  RowPlace ownedPages;     ///< usage map of the pages that hold the table's rows
  RowPlace pagesWithRoom;  ///< usage map of those among them that still have room

  /// Position in shape.columns, letter case ignored; nothing when there is no such column.
  std::optional<std::size_t> FindColumn(std::string_view name) const;
};

/// A definition as it was read.
struct DecodedDefinition {
  TableDefinition table;
  std::string fault;  ///< what contradicts itself; empty when the definition is sound
};

/// The pages of a definition follow each other; the later ones without their first eight bytes, which name the next.
DecodedDefinition DecodeDefinition(const TextForm& form, std::string_view bytes);

/// The page that defines a table without rows and without indexes. `maps` are the places of its usage maps: of its
/// pages, of those with room, and both once more for each column of long values. Columns that do not fit on one page
/// are an AutomationError (3251), and so is a name that the code page of the file cannot hold (3421).
std::string EncodeDefinition(const TextForm& form, const RowShape& shape, bool system,
                             const std::vector<RowPlace>& maps);

/// Where a definition counts the rows of its table.
std::size_t RowCountAt(Version version);

}  // namespace parvex::jet
