#include <algorithm>
#include <string>
#include <string_view>
#include <vector>

#include "adapters/posix/code_pages.h"
#include "formats/jet/databases.h"
#include "formats/jet/format.h"
#include "formats/jet/writer.h"
#include "fuzz/fuzz_input.h"
#include "tests/support/one_file.h"

// A damaged database is read and changed. Damage is small, so the input tells what to do to a sound
// file: a byte that chooses the database, a word of pages that are left, and then changes of five bytes each: page
// (one byte), place in it (two), how (one), value (one). With 255 as the first byte the rest is the file itself.

namespace parvex {
namespace {

using fuzz::MayBeRefused;
using fuzz::Require;
using standin::JetTable;
using Type = standin::JetColumn::Type;

constexpr std::string_view kPath = "C:\\Project.mdb";
constexpr std::uint8_t kRawFile = 255;

JetTable Settings(int rows, bool compressed) {
  JetTable table{"Config", {{"sPdsg"}, {"sKey"}, {"sValue"}, {"memo", Type::Memo}, {"number", Type::Long}}, {}};
  for (standin::JetColumn& column : table.columns) {
    column.compressed = compressed;
  }
  for (int i = 0; i < rows; ++i) {
    const std::string n = std::to_string(i);
    table.rows.push_back({"KDQ47", "key" + n, i % 7 == 0 ? std::nullopt : std::optional("value " + n),
                          std::string(static_cast<std::size_t>(i * 3), 'm'), n});
  }
  return table;
}

JetTable TagIndex() {
  JetTable table{"TagIndex",
                 {{"sAPP"},
                  {"sAppVer"},
                  {"sTagName"},
                  {"lTagId", Type::Long},
                  {"bLocked", Type::Boolean},
                  {"dPrice", Type::Double},
                  {"fTon", Type::Single},
                  {"nKind", Type::Byte}},
                 {}};
  for (int i = 0; i < 15; ++i) {
    table.rows.push_back({"38A", "47", "tag " + std::to_string(i), std::to_string(i), i % 2 == 0 ? "True" : "False",
                          "1.5", "2.25", "3"});
  }
  return table;
}

const std::string& SoundDatabase(std::uint8_t number) {
  static const std::vector<std::string> databases = {
      standin::MakeJetDatabase(std::vector{Settings(24, true), TagIndex()}),
      standin::MakeJetDatabase(std::vector{Settings(70, false)}),
      standin::MakeJetDatabase(std::vector{JetTable{"Config", {{"sPdsg"}, {"sKey"}, {"sValue"}}, {}}}),
      standin::MakeJetDatabase(std::vector{Settings(24, true), TagIndex()}, jet::Version::Jet3),
      standin::MakeJetDatabase(std::vector{Settings(70, false)}, jet::Version::Jet3),
  };
  return databases[number % databases.size()];
}

std::string DamagedDatabase(fuzz::Input& input) {
  const std::uint8_t number = input.TakeByte();
  if (number == kRawFile) {
    return std::string(input.TakeRest());
  }
  std::string bytes = SoundDatabase(number);
  const std::size_t pageSize = jet::PageSize(static_cast<jet::Version>(bytes[0x14]));
  const std::size_t length = input.TakeWord() * std::size_t{64};
  bytes.resize(length == 0 ? bytes.size() : std::min(length, bytes.size()));
  while (!input.Empty()) {
    const std::size_t page = input.TakeByte();
    const std::size_t at = page * pageSize + input.TakeWord() % pageSize;
    const std::uint8_t how = input.TakeByte();
    const auto value = static_cast<char>(input.TakeByte());
    if (at >= bytes.size()) {
      continue;
    }
    bytes[at] = how % 3 == 0 ? value : static_cast<char>(how % 3 == 1 ? bytes[at] ^ value : bytes[at] + value);
  }
  return bytes;
}

void ReadAll(jet::Databases& databases, const std::string& table) {
  MayBeRefused([&] {
    const auto database = databases.Open(kPath);
    const auto rows = database->OpenRecordSet("SELECT * FROM " + table);
    for (; !rows->AtEnd(); rows->MoveNext()) {
      for (const char* column : {"sKey", "sValue", "memo", "number", "lTagId", "bLocked", "dPrice"}) {
        MayBeRefused([&] { rows->Column(column); });
      }
    }
  });
}

void Change(jet::Databases& databases) {
  MayBeRefused([&] {
    const auto rows = databases.Open(kPath)->OpenRecordSet("SELECT * FROM Config WHERE sKey='key5'");
    if (rows->AtEnd()) {
      rows->AddNew();
      rows->SetColumn("sKey", "key5");
    } else {
      rows->Edit();
    }
    rows->SetColumn("sValue", std::string(250, 'x'));
    rows->Update();
    const auto again = databases.Open(kPath)->OpenRecordSet("SELECT * FROM Config WHERE sKey='key5'");
    Require(!again->AtEnd(), "a row that was stored is found");
  });
}

}  // namespace
}  // namespace parvex

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  using namespace parvex;
  fuzz::Input input(data, size);
  test::OneFile file;
  file.bytes = DamagedDatabase(input);
  jet::Databases databases(file, posix::CodePageOf);
  for (const char* table : {"Config", "TagIndex"}) {
    ReadAll(databases, table);
  }
  ReadAll(databases, "MSysObjects");
  Change(databases);
  return 0;
}
