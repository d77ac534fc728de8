#pragma once

#include <memory>
#include <optional>
#include <string>
#include <unordered_map>
#include <vector>

#include "platform/jet_file.h"

namespace parvex::posix {

/// One row as it is stored and as its columns read: numbers in decimal, a Boolean as True or False, a date as
/// YYYY-MM-DD hh:mm:ss, nothing for a null. Binary values do not read as text and have none either.
struct JetRow {
  jet::Row stored;
  std::vector<std::optional<std::string>> texts;
};

/// All rows of a table, read at once.
class JetTable {
 public:
  /// libmdb decodes the rows. It trusts what it reads, so `file` has checked every page and row that it gets to see.
  JetTable(const jet::File& file, std::uint32_t definitionPage);

  const jet::TableDefinition& Definition() const { return definition_; }
  const std::vector<JetRow>& Rows() const { return rows_; }

  /// The rows, in their order, in which each of these columns has this text; letter case is ignored. The first question
  /// about a set of columns costs one pass over the table, any further one about the same columns only its answer.
  std::vector<std::size_t> Find(const std::vector<std::pair<std::size_t, std::string>>& conditions);

 private:
  using RowsOfKey = std::unordered_map<std::string, std::vector<std::size_t>>;

  jet::TableDefinition definition_;
  std::vector<JetRow> rows_;
  std::unordered_map<std::string, RowsOfKey> lookups_;  ///< by the columns asked for
};

}  // namespace parvex::posix
