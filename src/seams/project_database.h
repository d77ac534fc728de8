#pragma once

#include <memory>
#include <optional>
#include <string>
#include <string_view>

namespace parvex {

/// Rows of a Jet database that a SELECT statement yields, one row current at a time. Texts are UTF-8; a null column has
/// no value; numbers read as their decimal text. Failures are AutomationErrors that name the database, the statement or
/// the column.
class RecordSet {
 public:
  virtual ~RecordSet() = default;

  /// Whether the current position is behind the last row.
  virtual bool AtEnd() = 0;
  virtual void MoveNext() = 0;
  virtual std::optional<std::string> Column(std::string_view name) = 0;

  /// Begins a new row, or the change of the current one; SetColumn fills it and Update saves it. What is not saved is
  /// dropped.
  virtual void AddNew() = 0;
  virtual void Edit() = 0;
  virtual void SetColumn(std::string_view name, std::string_view value) = 0;
  virtual void Update() = 0;
};

class Database {
 public:
  virtual ~Database() = default;
  /// Understands "SELECT * FROM table" with an optional "WHERE column='text'" and further "and column='text'". Names
  /// and texts compare without regard to letter case, as the Jet engine compares them.
  virtual std::unique_ptr<RecordSet> OpenRecordSet(std::string_view sql) = 0;
};

class ProjectDatabases {
 public:
  virtual ~ProjectDatabases() = default;
  /// Opens a database file of the machine; an AutomationError when it does not exist or is none.
  virtual std::unique_ptr<Database> Open(std::string_view path) = 0;
};

}  // namespace parvex
