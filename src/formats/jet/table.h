#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <unordered_map>
#include <utility>
#include <vector>

#include "formats/jet/file.h"

namespace parvex::jet {

/// One row as it is stored and as its columns read (DecodeValue; a Boolean as True or False). A null has no text;
/// neither has a stored value that reads as none.
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

}  // namespace parvex::jet
