#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "formats/jet/format.h"

namespace parvex::jet {

/// Numbers of the Jet engine's own errors that are raised here and by the databases above.
enum class EngineError : std::uint16_t {
  NoCurrentRecord = 3021,  ///< a column is read, or a change begun, where no row is current
  NothingToUpdate = 3020,  ///< Update or SetColumn without AddNew or Edit
  FileNotFound = 3024,
  InvalidPath = 3044,       ///< a folder on the way to the file does not exist
  TooFewParameters = 3061,  ///< a statement names a column that the table lacks
  SyntaxError = 3075,       ///< a statement that does not parse
  NoSuchTable = 3078,
  FieldTooSmall = 3163,     ///< a text longer than its column, or a row longer than a page
  ChangedMeanwhile = 3197,  ///< somebody else changed the row after it was read
  NotSupported = 3251,      ///< a change that cannot be made without damaging the file
  NoSuchColumn = 3265,
  UnrecognizedFormat = 3343,  ///< not a Jet 4 database, or a damaged one
  ObjectInvalid = 3420,       ///< something that was closed is used
  DataTypeConversion = 3421,  ///< a text that the column's type cannot take
  CriteriaMismatch = 3464     ///< a text compared with a column that holds none
};

/// Throws the AutomationError that carries the engine's number.
[[noreturn]] void Fail(EngineError error, const std::string& description);

/// The bytes in which a column stores a value that is given as text; none for a false Boolean. An AutomationError that
/// names the column and the value when it cannot hold it: a text too long (3163), not of its type (3421).
std::optional<std::string> EncodeValue(const Column& column, std::string_view text);

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

struct Row {
  RowPlace place;   ///< where the table knows the row: it stays when the row moves
  RowPlace stored;  ///< where its bytes are: elsewhere once it has outgrown its page
  StoredValues values;
};

/// The pages of one database file in memory. Whatever it hands out has been checked against the file's size and
/// structure; what does not fit is an error (3343) that names the file. Changes are made to the bytes in memory only.
class File {
 public:
  /// `name` is what errors call the file. An encrypted or older database is refused.
  File(std::string bytes, std::string name);

  const std::string& Bytes() const { return bytes_; }
  const std::string& Name() const { return name_; }

  TableDefinition ReadTable(std::uint32_t definitionPage) const;
  /// In the order of the pages and of the rows in them.
  std::vector<Row> ReadRows(const TableDefinition& table) const;
  /// The stored bytes of a memo or long binary value, which may be spread over pages.
  std::string ReadLongValue(const std::string& value) const;

  /// Refused for a table with an index or a counting column, which would have to be kept in step.
  void AddRow(const TableDefinition& table, const StoredValues& values);
  /// Refused when a column changes that an index covers.
  void ReplaceRow(const TableDefinition& table, const Row& row, const StoredValues& values);

 private:
  [[noreturn]] void Damaged(const std::string& what) const;
  [[noreturn]] void RefuseIndexed(const Index& index) const;
  std::size_t PageCount() const { return bytes_.size() / kPageSize; }
  std::string_view Page(std::uint32_t number) const;
  DataPage ReadDataPage(std::uint32_t number) const;
  DataPage ReadTablePage(const TableDefinition& table, std::uint32_t number) const;
  void WritePage(std::uint32_t number, std::string_view bytes);
  std::string SlotBytes(RowPlace place) const;

  std::vector<std::uint32_t> PagesInMap(RowPlace map) const;
  /// Marks or unmarks a page; `elsewhere` is how pages count that the map does not cover.
  void MarkInMap(RowPlace map, std::uint32_t page, bool mark, bool elsewhere);
  void SpreadMap(RowPlace map, bool elsewhere);
  std::uint32_t AppendPage(std::string_view bytes);
  RowPlace StoreRow(const TableDefinition& table, std::string rowBytes, bool hidden);

  std::string bytes_;
  std::string name_;
};

}  // namespace parvex::jet
