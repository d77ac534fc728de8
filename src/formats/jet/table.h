#pragma once

#include <cstdint>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <unordered_map>
#include <utility>
#include <vector>

#include "formats/jet/file.h"

namespace parvex::jet {

/// One row as it is stored and as its columns read: numbers in decimal, a Boolean as True or False, a date as
/// YYYY-MM-DD hh:mm:ss, nothing for a null. Binary values do not read as text and have none either.
struct TextRow {
  Row stored;
  std::vector<std::optional<std::string>> texts;
};

/// All rows of a table.
class Table {
 public:
  Table(TableDefinition definition, std::vector<TextRow> rows)
      : definition_(std::move(definition)), rows_(std::move(rows)) {}

  const TableDefinition& Definition() const { return definition_; }
  const std::vector<TextRow>& Rows() const { return rows_; }

  /// The rows, in their order, in which each of these columns has this text; letter case is ignored. The first question
  /// about a set of columns costs one pass over the table, any further one about the same columns only its answer.
  std::vector<std::size_t> Find(const std::vector<std::pair<std::size_t, std::string>>& conditions);

 private:
  using RowsOfKey = std::unordered_map<std::string, std::vector<std::size_t>>;

  TableDefinition definition_;
  std::vector<TextRow> rows_;
  std::unordered_map<std::string, RowsOfKey> lookups_;  ///< by the columns asked for
};

/// Reads a table, by the page of its definition, and decodes its rows.
using TableReader = std::function<Table(const File& file, std::uint32_t definitionPage)>;

}  // namespace parvex::jet
