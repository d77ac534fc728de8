#pragma once

#include "formats/jet/table.h"
#include "seams/files.h"
#include "seams/project_database.h"

namespace parvex::jet {

/// A record set that knows of which type its columns are.
class TypedRecordSet : public RecordSet {
 public:
  virtual ColumnType TypeOf(std::string_view column) const = 0;
  /// The bytes of the current row's column; nothing for a null.
  virtual std::optional<std::string> Stored(std::string_view column) const = 0;
};

class TypedDatabase : public Database {
 public:
  virtual std::unique_ptr<TypedRecordSet> OpenTyped(std::string_view sql) = 0;
  std::unique_ptr<RecordSet> OpenRecordSet(std::string_view sql) override { return OpenTyped(sql); }
};

/// Jet 3 and Jet 4 databases (.mdb) in files. docs/jet-databases.md says what is understood and what is refused.
///
/// A change is made in a copy of the file that then replaces it: at every moment the file is as it was or holds the
/// whole change. A row that somebody else changed since it was read is not overwritten (3197). A record set keeps the
/// rows that it was opened with, as changed through it; rows added show in record sets opened later. A change is made
/// under Files::HoldForChange, which others than this system know nothing of.
///
/// A column of a type that has no text is an error when a row that has a value there is asked for it (13), which names
/// table, column and type.
class Databases : public ProjectDatabases {
 public:
  /// `files` has to outlive the databases opened. `codePages` are those in which Jet 3 databases are understood.
  explicit Databases(Files& files, CodePages codePages = WesternCodePage)
      : files_(files), codePages_(std::move(codePages)) {}

  std::unique_ptr<TypedDatabase> OpenTyped(std::string_view path);
  std::unique_ptr<Database> Open(std::string_view path) override { return OpenTyped(path); }

 private:
  Files& files_;
  CodePages codePages_;
};

}  // namespace parvex::jet
