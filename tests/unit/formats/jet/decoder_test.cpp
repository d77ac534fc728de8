#include "formats/jet/decoder.h"

#include <gtest/gtest.h>

#include <array>
#include <cstring>
#include <limits>

#include "formats/jet/stored_text.h"
#include "formats/jet/writer.h"
#include "tests/support/jet_readers.h"

namespace parvex::jet {
namespace {

using Type = standin::JetColumn::Type;

/// Of the first table that is not the system's.
constexpr std::uint32_t kFirstDefinitionPage = kCataloguePage + 4;

File Made(const standin::JetTable& table) { return {standin::MakeJetDatabase({&table, 1}), "C:\\Project.mdb"}; }

std::vector<std::vector<std::optional<std::string>>> TextsOf(const Table& table) {
  std::vector<std::vector<std::optional<std::string>>> texts;
  for (const TextRow& row : table.Rows()) texts.push_back(row.texts);
  return texts;
}

template <typename Number>
std::string Stored(Number number) {
  std::string bytes(sizeof number, '\0');
  std::memcpy(bytes.data(), &number, sizeof number);
  return bytes;
}

std::string StoredDecimal(bool negative, std::array<std::uint32_t, 4> words) {
  std::string bytes(1, negative ? '\x80' : '\0');
  for (const std::uint32_t word : words) bytes += Bytes32(word);
  return bytes;
}

standin::JetTable EveryType() {
  const std::string guid = "\1\2\3\4\5\6\7\x8\x9\xA\xB\xC\xD\xE\xF\xFF";
  return {"All",
          {{"packed"},
           {"plain", Type::Text, 255, false},
           {"memo", Type::Memo},
           {"flag", Type::Boolean},
           {"byte", Type::Byte},
           {"integer", Type::Integer},
           {"long", Type::Long},
           {"single", Type::Single},
           {"double", Type::Double},
           {"money", Type::Currency},
           {"date", Type::DateTime},
           {"id", Type::Guid},
           {"amount", Type::Decimal, 255, true, 3},
           {"whole", Type::Decimal, 255, true, 0}},
          {{"Müller", "Müller", "Müller\r\n", "True", "255", "-32768", "-2147483648", "0.5", "0.25",
            Stored<std::int64_t>(12345), Stored(37622.75), guid, StoredDecimal(false, {0, 0, 0, 5}),
            StoredDecimal(true, {1, 2, 3, 4})},
           {"Ωmega 日本 x", "Ω", "日本 and back", "False", "0", "32767", "2147483647", "-2.5", "1e+300",
            Stored(std::numeric_limits<std::int64_t>::min()), Stored(0.0), guid, StoredDecimal(true, {0, 0, 1, 0}),
            StoredDecimal(false, {0, 0, 0, 0})},
           {"ж!ÿ", "", "", "True", "1", "0", "0", "0", "-0.001", Stored<std::int64_t>(-1), Stored(73050.5), guid,
            StoredDecimal(false, {0, 0, 0, 123456}), StoredDecimal(false, {0, 0, 0, 7})},
           std::vector<std::optional<std::string>>(14)}};
}

const std::vector<std::vector<std::optional<std::string>>> kEveryText{
    {"Müller", "Müller", "Müller\r\n", "True", "255", "-32768", "-2147483648", "0.5", "0.25", "1.2345",
     "2003-01-01 18:00:00", "{04030201-0605-0807-090A0B0C0D0E0FFF}", "0.005", "-79228162551157825753847955460"},
    {"Ωmega 日本 x", "Ω", "日本 and back", "False", "0", "32767", "2147483647", "-2.5", "1e+300",
     "-922337203685477.5808", "1899-12-30 00:00:00", "{04030201-0605-0807-090A0B0C0D0E0FFF}", "-4294967.296", "0"},
    {"ж!ÿ", "", "", "True", "1", "0", "0", "0", "-0.001", "-0.0001", "2099-12-31 12:00:00",
     "{04030201-0605-0807-090A0B0C0D0E0FFF}", "123.456", "7"},
    {std::nullopt, std::nullopt, std::nullopt, "False", std::nullopt, std::nullopt, std::nullopt, std::nullopt,
     std::nullopt, std::nullopt, std::nullopt, std::nullopt, std::nullopt, std::nullopt}};

TEST(DecodeTable, ReadsEveryTypeThatHasAText) {
  EXPECT_EQ(TextsOf(DecodeTable(Made(EveryType()), kFirstDefinitionPage)), kEveryText);
}

// What we decode is what mdbtools read. Their program prints a Boolean as a digit, and of a null nothing.
TEST(DecodeTable, ReadsWhatMdbtoolsRead) {
  const standin::JetTable table = EveryType();
  const auto exported =
      test::RunMdbTool("mdb-export", "-H -Q -d '|' -T '%Y-%m-%d %H:%M:%S' -R '~'", Made(table).Bytes(), "All");
  if (!exported) GTEST_SKIP() << "mdb-export is not installed";
  std::string expected;
  for (const auto& row : kEveryText) {
    for (std::size_t i = 0; i < row.size(); ++i) {
      const std::string text = row[i].value_or("");
      expected += (i == 0 ? "" : "|") + (table.columns[i].type != Type::Boolean ? text : text == "True" ? "1" : "0");
    }
    expected += '~';
  }
  std::string read;
  for (const std::string& line : *exported) read += (read.empty() ? "" : "\n") + line;
  EXPECT_EQ(read, expected);
}

// Jet 3 has the same types but Decimal, and texts of its code page.
TEST(DecodeTable, ReadsEveryTypeOfJet3) {
  standin::JetTable table = EveryType();
  std::vector<std::vector<std::optional<std::string>>> expected = kEveryText;
  table.columns.resize(table.columns.size() - 2);
  for (std::size_t i = 0; i < table.rows.size(); ++i) {
    table.rows[i].resize(table.columns.size());
    expected[i].resize(table.columns.size());
    for (std::size_t text = 0; text < 3 && i < 3; ++text) table.rows[i][text] = expected[i][text] = "€ Müller\r\n";
  }
  const File file{standin::MakeJetDatabase({&table, 1}, Version::Jet3), "C:\\Project.mdb"};
  EXPECT_EQ(TextsOf(DecodeTable(file, kFirstDefinitionPage)), expected);
}

TEST(DecodeText, ReadsBothFormsAndWhatIsCutShort) {
  using namespace std::string_view_literals;
  EXPECT_EQ(DecodeText(""), "");
  EXPECT_EQ(DecodeText("a\0b\0"sv), "ab");
  EXPECT_EQ(DecodeText("\xFF\xFE"
                       "ab"sv),
            "ab");
  EXPECT_EQ(DecodeText("\xFF\xFE"
                       "a\0\xA9\x03\0b"sv),
            "aΩb");
  EXPECT_EQ(DecodeText("\xFF\xFE\0\xA9"sv), "") << "half a character";
  EXPECT_EQ(DecodeText("a\0b"sv), "a");
}

}  // namespace
}  // namespace parvex::jet
