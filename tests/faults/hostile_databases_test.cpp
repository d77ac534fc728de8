#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <functional>
#include <string>
#include <vector>

#include "formats/jet/data_page.h"
#include "formats/jet/databases.h"
#include "formats/jet/file.h"
#include "formats/jet/row.h"
#include "formats/jet/writer.h"
#include "tests/faults/limited_child.h"
#include "tests/support/one_file.h"

// Databases that were made to become far more than they are: each is refused as damaged, or read, quickly and in little
// memory.

namespace parvex::test {
namespace {

using standin::JetColumn;
using standin::JetTable;
using Type = JetColumn::Type;
using testing::HasSubstr;

constexpr std::uint32_t kTablePage = jet::kCataloguePage + 4;
constexpr jet::Version kVersion = jet::Version::Jet4;
constexpr std::size_t kPage = jet::PageSize(kVersion);

struct DatabaseAttack {
  std::string name;
  std::function<std::string()> make;
  std::string told;
};

void PrintTo(const DatabaseAttack& attack, std::ostream* out) { *out << attack.name; }

// A table with so many data pages, which a test fills.
struct Pages {
  std::string bytes;
  std::vector<std::size_t> numbers;
  jet::RowShape shape;

  void FillAll(const std::vector<std::string>& records) {
    jet::DataPage page{.version = kVersion, .owner = kTablePage, .slots = {}};
    for (const std::string& record : records) {
      page.slots.push_back({.bytes = record});
    }
    for (const std::size_t number : numbers) {
      bytes.replace(number * kPage, kPage, jet::EncodeDataPage(page));
    }
  }
};

// A row with `values` in all columns; empty ones are null.
std::string RowOf(const jet::RowShape& shape, const std::string& value) {
  jet::StoredValues values(shape.columns.size());
  if (!value.empty()) {
    values[0] = value;
  }
  return jet::EncodeRow(shape, values);
}

Pages TableOf(const std::vector<JetColumn>& columns, std::size_t pages) {
  JetTable table{"Config", columns, {}};
  jet::File file(standin::MakeJetDatabase(std::vector{table}, kVersion), "made");
  const jet::TableDefinition definition = file.ReadTable(kTablePage);
  Pages made;
  made.shape = definition.shape;
  jet::StoredValues values(columns.size());
  values[0] = jet::EncodeLongValue(std::string(3'900, 'm'));
  for (std::size_t i = 0; i < pages; ++i) {
    made.numbers.push_back(file.Bytes().size() / kPage);  // the row has no room on another page
    file.AddRow(definition, values);
  }
  made.bytes = file.Bytes();
  return made;
}

std::string HeaderOf(std::uint32_t kind, std::size_t length, std::uint32_t page, std::uint8_t row) {
  return jet::Bytes32(kind | static_cast<std::uint32_t>(length)) + jet::BytesOfPlace({page, row}) +
         std::string(4, '\0');
}

// Behind the table's pages, a chain of so many pages, each with records of `size` bytes, all linked in one row.
std::string WithChain(Pages table, std::size_t pages, std::size_t perPage, std::size_t size, std::size_t length,
                      std::size_t rowsPerPage) {
  const auto first = static_cast<std::uint32_t>(table.bytes.size() / kPage);
  for (std::size_t i = 0; i < pages; ++i) {
    jet::DataPage page{.version = kVersion, .owner = 0x4C41564C, .slots = {}};
    for (std::size_t slot = 0; slot < perPage; ++slot) {
      const bool isLast = slot + 1 == perPage;
      const auto nextPage = static_cast<std::uint32_t>(first + i + (isLast ? 1 : 0));
      const bool isEnd = isLast && i + 1 == pages;
      const jet::RowPlace next =
          isEnd ? jet::RowPlace{} : jet::RowPlace{nextPage, static_cast<std::uint8_t>(isLast ? 0 : slot + 1)};
      page.slots.push_back({.bytes = jet::BytesOfPlace(next) + std::string(size - 4, 'm')});
    }
    table.bytes += jet::EncodeDataPage(page);
  }
  const std::string row = RowOf(table.shape, HeaderOf(0, length, first, 0));
  table.FillAll(std::vector<std::string>(rowsPerPage, row));
  return table.bytes;
}

std::vector<JetColumn> WideTable() {
  std::vector<JetColumn> columns = {{"first", Type::Memo}};
  for (int i = 1; i < 100; ++i) {
    columns.push_back({"c" + std::to_string(i), Type::Boolean});
  }
  return columns;
}

// Rows older than all but one of the columns of their table have hardly a byte.
std::string OldRowsOfAWideTable() {
  Pages table = TableOf(WideTable(), 1'000);
  jet::RowShape old = table.shape;
  old.columns.resize(1);
  old.columnCount = 1;
  const std::string row = jet::EncodeRow(old, {std::nullopt});
  table.FillAll(std::vector<std::string>(250, row));
  return table.bytes;
}

// Every entry of the table's usage map names the same page of bits.
std::string MapOfOnePageOfBits() {
  Pages table = TableOf({{"first", Type::Memo}}, 1);
  jet::TableDefinition definition = jet::File(table.bytes, "made").ReadTable(kTablePage);
  const auto bits = static_cast<std::uint32_t>(table.bytes.size() / kPage);
  std::string page(kPage, '\xFF');
  page.replace(0, 4, std::string_view("\5\1\0\0", 4));
  std::string record(1, '\1');
  while (record.size() < 4'000) {
    record += jet::Bytes32(bits);
  }
  jet::DataPage holder{.version = kVersion, .owner = 0, .slots = {}};
  holder.slots.resize(definition.ownedPages.row + 1u);
  holder.slots[definition.ownedPages.row].bytes = record;
  holder.slots[0].bytes = definition.ownedPages.row == 0 ? record : std::string(5, '\0');
  while (holder.slots.size() < 2u) {
    holder.slots.push_back({.bytes = std::string(5, '\0')});
  }
  table.bytes.replace(definition.ownedPages.page * kPage, kPage, jet::EncodeDataPage(holder));
  return table.bytes + page;
}

class HostileDatabase : public testing::TestWithParam<DatabaseAttack> {};

TEST_P(HostileDatabase, IsRefusedOrReadInLittleMemory) {
  OneFile file;
  file.bytes = GetParam().make();
  const ChildOutcome outcome = InLimitedChild([&] {
    jet::Databases databases(file);
    const auto rows = databases.Open("C:\\Project.mdb")->OpenRecordSet("SELECT * FROM Config");
    std::size_t bytes = 0;
    for (; !rows->AtEnd(); rows->MoveNext()) {
      bytes += rows->Column("first").value_or("").size();
    }
    return std::string("read");
  });
  ExpectQuick(outcome);
  EXPECT_THAT(outcome.answer, HasSubstr(GetParam().told));
}

const std::vector<JetColumn> kMemo = {{"first", Type::Memo}};

INSTANTIATE_TEST_SUITE_P(
    Of, HostileDatabase,
    testing::Values(DatabaseAttack{"RowsThatShareOneChain",
                                   [] { return WithChain(TableOf(kMemo, 100), 1'000, 1, 4'000, 3'900'000, 100); },
                                   "memos share their bytes"},
                    DatabaseAttack{"RowsThatShareOneLongChain",
                                   [] { return WithChain(TableOf(kMemo, 20), 2'000, 1, 4'000, 7'800'000, 100); },
                                   "memos share their bytes"},
                    DatabaseAttack{"RowsThatShareTheBeginningOfAChainOfCrumbs",
                                   [] { return WithChain(TableOf(kMemo, 500), 500, 250, 5, 1'000, 80); },
                                   "memos share their bytes"},
                    DatabaseAttack{"OldRowsOfAWideTable", OldRowsOfAWideTable, "more values than"},
                    DatabaseAttack{"AUsageMapOfOnePageOfBits", MapOfOnePageOfBits, "more pages than there are"}),
    [](const testing::TestParamInfo<DatabaseAttack>& info) { return info.param.name; });

}  // namespace
}  // namespace parvex::test
