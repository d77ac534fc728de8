#pragma once

#include "adapters/posix/libmdb_table.h"
#include "formats/jet/databases.h"

namespace parvex::posix {

/// Jet databases of the machine, read by libmdb.
class JetDatabases : public jet::Databases {
 public:
  explicit JetDatabases(Files& files) : jet::Databases(files, ReadTableByLibmdb) {}
};

}  // namespace parvex::posix
