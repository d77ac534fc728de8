#include "formats/jet/row.h"

#include <gtest/gtest.h>

#include <random>

namespace parvex::jet {
namespace {

using namespace std::string_literals;

/// A Long, and texts behind it.
RowShape Shape(Version version, std::uint16_t texts) {
  RowShape shape;
  shape.version = version;
  for (std::uint16_t i = 0; i <= texts; ++i) {
    Column column;
    column.type = i == 0 ? ColumnType::Long : ColumnType::Text;
    column.fixed = i == 0;
    column.size = i == 0 ? 4 : 255;
    column.number = i;
    column.variableNumber = static_cast<std::uint16_t>(i == 0 ? 0 : i - 1);
    shape.columns.push_back(column);
  }
  shape.columnCount = static_cast<std::uint16_t>(texts + 1);
  shape.variableCount = texts;
  return shape;
}

class RowOf : public testing::TestWithParam<Version> {};

TEST_P(RowOf, EveryLengthTravelsThereAndBack) {
  const RowShape shape = Shape(GetParam(), 3);
  for (std::size_t first = 0; first <= 600; first += first < 200 || first > 280 ? 37 : 1) {
    for (const std::size_t last : {0u, 1u, 230u, 255u, 256u, 700u}) {
      const StoredValues values{"1234", std::string(first, 'a'), std::nullopt, std::string(last, 'c')};
      EXPECT_EQ(DecodeRow(shape, EncodeRow(shape, values)), values) << first << " and " << last;
    }
  }
}

TEST_P(RowOf, AsManyColumnsAsATableMayHaveTravelThereAndBack) {
  const RowShape shape = Shape(GetParam(), 254);
  for (const std::size_t length : {0u, 1u, 2u, 6u}) {
    StoredValues values{"1234"};
    for (std::size_t i = 0; i < 254; ++i) {
      values.push_back(i % 5 == 0 ? std::nullopt : std::optional(std::string(length, 'x')));
    }
    EXPECT_EQ(DecodeRow(shape, EncodeRow(shape, values)), values) << length;
  }
}

TEST_P(RowOf, WrongBytesAreARowOrNone) {
  const RowShape shape = Shape(GetParam(), 3);
  const std::string sound = EncodeRow(shape, {"1234", std::string(300, 'a'), "b", std::string(300, 'c')});
  std::mt19937 random(47);
  int refused = 0;
  for (int i = 0; i < 20'000; ++i) {
    std::string row = sound.substr(0, i % 3 == 0 ? random() % (sound.size() + 1) : sound.size());
    // Most of what can be wrong stands at the end.
    for (int n = 0; n < 2 && !row.empty(); ++n) {
      row[row.size() - 1 - random() % std::min<std::size_t>(row.size(), 16)] = static_cast<char>(random());
    }
    const auto values = DecodeRow(shape, row);
    refused += values ? 0 : 1;
    ASSERT_EQ(values.value_or(StoredValues(4)).size(), 4u);
  }
  EXPECT_GT(refused, 5'000);
}

TEST_P(RowOf, ARowOlderThanItsLastColumnsHasNullsThere) {
  const std::string row = EncodeRow(Shape(GetParam(), 1), {"1234", "old"});
  EXPECT_EQ(DecodeRow(Shape(GetParam(), 3), row), (StoredValues{"1234", "old", std::nullopt, std::nullopt}));
}

INSTANTIATE_TEST_SUITE_P(Versions, RowOf, testing::Values(Version::Jet3, Version::Jet4),
                         [](const auto& tested) { return tested.param == Version::Jet3 ? "Jet3"s : "Jet4"s; });

TEST(EncodeRow, AJumpOfJet3TellsWhichOffsetPassedAnother256Bytes) {
  const std::string row = EncodeRow(Shape(Version::Jet3, 2), {"1234", std::string(252, 'a'), "bc"});
  // 257 where the second text begins, 259 where it ends: their low bytes, last one first; then the jump, at offset 1.
  EXPECT_EQ(row, "\3"s + "1234" + std::string(252, 'a') + "bc" + "\3\1\5" + "\1" + "\2" + "\7");
}

TEST(EncodeRow, AJumpOfJet3ThatOnlyTheOffsetsThemselvesReachIsADummy) {
  const std::string row = EncodeRow(Shape(Version::Jet3, 2), {"1234", std::string(249, 'a'), "b"});
  EXPECT_EQ(row, "\3"s + "1234" + std::string(249, 'a') + "b" + "\xFF\xFE\5" + "\xFF" + "\2" + "\7");
}

TEST(EncodeRow, NumbersOfJet4TakeTwoBytes) {
  const std::string row = EncodeRow(Shape(Version::Jet4, 2), {"1234", "a", std::nullopt});
  EXPECT_EQ(row, "\3\0"s + "1234" + "a" + "\7\0\7\0\6\0"s + "\2\0"s + "\3");
}

}  // namespace
}  // namespace parvex::jet
