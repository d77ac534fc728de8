#include "formats/jet/decoder.h"

#include <gtest/gtest.h>

#include "adapters/posix/libmdb_table.h"
#include "formats/jet/stored_text.h"
#include "formats/jet/writer.h"

namespace parvex::jet {
namespace {

using Type = standin::JetColumn::Type;

/// Of the first table that is not the system's.
constexpr std::uint32_t kDefinitionPage = kCataloguePage + 4;

File Made(const standin::JetTable& table) { return {standin::MakeJetDatabase({&table, 1}), "C:\\Project.mdb"}; }

std::vector<std::vector<std::optional<std::string>>> TextsOf(const Table& table) {
  std::vector<std::vector<std::optional<std::string>>> texts;
  for (const TextRow& row : table.Rows()) texts.push_back(row.texts);
  return texts;
}

// The library is the judge: what our own decoder reads is what libmdb reads, for every type that both know.
TEST(DecodeTable, ReadsWhatLibmdbReads) {
  const File file =
      Made({"All",
            {{"packed"},
             {"plain", Type::Text, 255, false},
             {"memo", Type::Memo},
             {"flag", Type::Boolean},
             {"byte", Type::Byte},
             {"integer", Type::Integer},
             {"long", Type::Long},
             {"single", Type::Single},
             {"double", Type::Double}},
            {{"Müller", "Müller", "Müller\r\n", "True", "255", "-32768", "-2147483648", "0.1", "0.1"},
             {"Ωmega 日本 x", "Ω", "日本 and back", "False", "0", "32767", "2147483647", "-2.5", "1e+300"},
             {"😀!ÿ", "", "", "True", "1", "0", "0", "0", "-0.001"},
             {"", "Āx", std::nullopt, "False", std::nullopt, "7", std::nullopt, "16777216", "3"},
             {std::nullopt, std::nullopt, std::string(1500, 'm'), "True", "9", std::nullopt, "1", std::nullopt,
              std::nullopt}}});
  const auto expected = TextsOf(posix::ReadTableByLibmdb(file, kDefinitionPage));
  ASSERT_EQ(expected.size(), 5u);
  EXPECT_EQ(TextsOf(DecodeTable(file, kDefinitionPage)), expected);
  EXPECT_EQ(TextsOf(DecodeTable(file, kCataloguePage)).size(),
            TextsOf(posix::ReadTableByLibmdb(file, kCataloguePage)).size());
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
