#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

/// The file format of Jet 3 and Jet 4 (.mdb), as far as reading, changing and making files needs it;
/// docs/jet-databases.md describes it in prose. Here are the numbers in it and what its structures have in common.
namespace parvex::jet {

/// As the header counts it: Jet 3 is what Access 97 writes, Jet 4 what Access 2000 and later write.
enum class Version : std::uint8_t { Jet3 = 0, Jet4 = 1 };

constexpr std::size_t PageSize(Version version) { return version == Version::Jet3 ? 2048 : 4096; }
/// The longest row that a page can hold.
constexpr std::size_t LongestRow(Version version) { return version == Version::Jet3 ? 2012 : 4060; }
/// "Standard Jet DB" stands behind these four bytes at the start of every file.
inline constexpr std::string_view kFileStart{"\0\1\0\0Standard Jet DB\0", 20};
/// The system catalogue (MSysObjects) always has its table definition on this page.
inline constexpr std::uint32_t kCataloguePage = 2;
/// What the catalogue calls a table; the number of a table's definition page is its object id.
inline constexpr int kTableObject = 1;

/// Of the files made here: English, the first version of its order, and Western European characters.
inline constexpr std::uint16_t kSortOrder = 0x0409;
inline constexpr std::uint16_t kCodePage = 1252;

enum class PageType : std::uint8_t { Database = 0, Data = 1, TableDefinition = 2, UsageMap = 5 };

enum class ColumnType : std::uint8_t {
  Boolean = 1,
  Byte = 2,
  Integer = 3,
  Long = 4,
  Currency = 5,
  Single = 6,
  Double = 7,
  DateTime = 8,
  Binary = 9,
  Text = 10,
  LongBinary = 11,
  Memo = 12,
  Guid = 15,
  Decimal = 16
};

/// Whether values are kept behind a header of their own, and may be spread over pages.
bool IsLongValue(ColumnType type);
bool IsText(ColumnType type);

struct Column {
  std::string name;
  ColumnType type = ColumnType::Text;
  bool fixed = false;       ///< has its place in the fixed part of a row
  bool compressed = false;  ///< texts may be stored in the compressed form
  bool autonumber = false;
  std::uint16_t number = 0;           ///< its bit in the null mask; numbers of deleted columns are not used again
  std::uint16_t variableNumber = 0;   ///< its entry in the table of variable offsets
  std::uint16_t fixedOffset = 0;      ///< from the end of the row's column count
  std::uint16_t size = 0;             ///< bytes: exactly for fixed columns, at most for texts
  std::optional<std::uint8_t> scale;  ///< of a Decimal of Jet 4: how many of its digits are places

  bool operator==(const Column&) const = default;
};

/// What the rows of one table have in common.
struct RowShape {
  Version version = Version::Jet4;
  std::vector<Column> columns;
  std::uint16_t columnCount = 0;    ///< with the deleted ones
  std::uint16_t variableCount = 0;  ///< with the deleted ones
};

/// The stored bytes of a row's columns, in the order of RowShape::columns; a null column has none. A Boolean is never
/// null: it has no bytes when false and one when true.
using StoredValues = std::vector<std::optional<std::string>>;

/// Where a row stands. Stored in four bytes: the row number in the lowest, the page above it.
struct RowPlace {
  std::uint32_t page = 0;
  std::uint8_t row = 0;
  bool operator==(const RowPlace&) const = default;
};

// Numbers, little-endian. The place must lie inside.
std::uint8_t ByteAt(std::string_view bytes, std::size_t at);
std::uint16_t Get16(std::string_view bytes, std::size_t at);
std::uint32_t Get32(std::string_view bytes, std::size_t at);
RowPlace GetPlace(std::string_view bytes, std::size_t at);
void Put16(std::string& bytes, std::size_t at, std::uint16_t value);
void Put32(std::string& bytes, std::size_t at, std::uint32_t value);
void PutPlace(std::string& bytes, std::size_t at, RowPlace place);
void Append16(std::string& bytes, std::uint16_t value);
void Append32(std::string& bytes, std::uint32_t value);
std::string Bytes16(std::uint16_t value);
std::string Bytes32(std::uint32_t value);
std::string BytesOfPlace(RowPlace place);

/// Turns the masked part of a database page readable, or back.
void ToggleHeaderMask(std::string& databasePage, Version version);

}  // namespace parvex::jet
