#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "formats/jet/data_page.h"
#include "formats/jet/engine_error.h"
#include "formats/jet/format.h"
#include "formats/jet/stored_text.h"
#include "formats/jet/table_definition.h"

namespace parvex::jet {

struct Row {
  RowPlace place;   ///< where the table knows the row: it stays when the row moves
  RowPlace stored;  ///< where its bytes are: elsewhere once it has outgrown its page
  StoredValues values;
};

/// The pages of one database file in memory. Whatever it hands out has been checked against the file's size and
/// structure; what does not fit is an error (3343) that names the file. Changes are made to the bytes in memory only.
class File {
 public:
  /// `name` is what errors call the file. Refused are an encrypted database, another version than 3 and 4, and one of
  /// Jet 3 in a code page that `codePages` does not know.
  File(std::string bytes, std::string name, const CodePages& codePages = WesternCodePage);

  const std::string& Bytes() const { return bytes_; }
  const std::string& Name() const { return name_; }
  const TextForm& Texts() const { return texts_; }

  TableDefinition ReadTable(std::uint32_t definitionPage) const;
  /// In the order of the pages and of the rows in them.
  std::vector<Row> ReadRows(const TableDefinition& table) const;
  /// The stored bytes of a memo or long binary value, which may be spread over pages. What was read for it is taken off
  /// `left`, which begins as the file's size: sound values have bytes of their own, and those that share some would
  /// make a small file a large table.
  std::string ReadLongValue(const std::string& value, std::size_t& left) const;

  /// Refused for a table with an index or a counting column, which would have to be kept in step.
  void AddRow(const TableDefinition& table, const StoredValues& values);
  /// Refused when a column changes that an index covers.
  void ReplaceRow(const TableDefinition& table, const Row& row, const StoredValues& values);

 private:
  [[noreturn]] void Damaged(const std::string& what) const;
  [[noreturn]] void RefuseIndexed(const Index& index) const;
  std::shared_ptr<TextCodec> FindCodePage(std::uint16_t number, const CodePages& codePages) const;
  std::size_t PageCount() const { return bytes_.size() / PageSize(version_); }
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
  Version version_ = Version::Jet4;
  TextForm texts_;
};

}  // namespace parvex::jet
