#pragma once

#include "platform/jet_databases.h"
#include "platform/posix/libmdb_table.h"

namespace parvex::posix {

/// Jet databases of the machine, read by libmdb.
class JetDatabases : public jet::Databases {
 public:
  explicit JetDatabases(Files& files) : jet::Databases(files, ReadTableByLibmdb) {}
};

}  // namespace parvex::posix
