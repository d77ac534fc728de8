#pragma once

#include <optional>
#include <span>
#include <string>
#include <vector>

#include "formats/jet/format.h"

namespace parvex::standin {

struct JetColumn {
  enum class Type {
    Text,
    Memo,
    Boolean,
    Byte,
    Integer,
    Long,
    Single,
    Double,
    // Columns of these types are given the bytes that they store.
    Currency,
    DateTime,
    Guid,
    Decimal,
    Binary,
    LongBinary
  };
  std::string name;
  Type type = Type::Text;
  int size = 255;          ///< characters that a text may have, at most 255; of no meaning for the other types
  bool compressed = true;  ///< whether texts are stored in the compressed form where that is shorter
  int scale = 0;           ///< of a Decimal
};

struct JetTable {
  std::string name;
  std::vector<JetColumn> columns;
  /// As many values as columns; no value is a null, numbers are decimal.
  std::vector<std::vector<std::optional<std::string>>> rows;
};

/// The bytes of a new database that holds these tables and the system tables, none with an index. One of Jet 3 has code
/// page 1252. A value or a name that it cannot hold is an AutomationError.
std::string MakeJetDatabase(std::span<const JetTable> tables, jet::Version version = jet::Version::Jet4);

}  // namespace parvex::standin
