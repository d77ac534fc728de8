#pragma once

#include "platform/files.h"
#include "platform/project_database.h"

namespace parvex::posix {

/// Jet 4 databases (.mdb) of the machine, read by libmdb. docs/jet-databases.md says what is understood and what is
/// refused.
///
/// A change is made in a copy of the file that then replaces it: at every moment the file is as it was or holds the
/// whole change. A row that somebody else changed since it was read is not overwritten (3197). A record set keeps the
/// rows that it was opened with, as changed through it; rows added show in record sets opened later. Nothing is locked.
class JetDatabases : public ProjectDatabases {
 public:
  /// `files` has to outlive the databases opened.
  explicit JetDatabases(Files& files) : files_(files) {}
  std::unique_ptr<Database> Open(std::string_view path) override;

 private:
  Files& files_;
};

}  // namespace parvex::posix
