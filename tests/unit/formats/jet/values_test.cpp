#include "formats/jet/values.h"

#include <gtest/gtest.h>

#include <cstring>
#include <limits>

namespace parvex::jet {
namespace {

Column ColumnOf(ColumnType type, std::optional<std::uint8_t> scale = 0) {
  Column column;
  column.type = type;
  column.scale = scale;
  return column;
}

std::optional<std::string> DateText(double days) {
  std::string stored(sizeof days, '\0');
  std::memcpy(stored.data(), &days, sizeof days);
  return DecodeValue(ColumnOf(ColumnType::DateTime), stored, TextForm());
}

TEST(DecodeValue, DatesAreRoundedToSecondsAndBeginAnotherDayWhereTheyReachIt) {
  EXPECT_EQ(DateText(1.0 / 86400 * 1.6), "1899-12-30 00:00:02");
  EXPECT_EQ(DateText(1.999999), "1900-01-01 00:00:00");
}

TEST(DecodeValue, TheTimeOfADateBefore1899CountsForwardToo) {
  EXPECT_EQ(DateText(-1.25), "1899-12-29 06:00:00");
  EXPECT_EQ(DateText(-657434), "0100-01-01 00:00:00");
}

TEST(DecodeValue, NumbersOfDaysThatAreNoDateHaveNoText) {
  EXPECT_EQ(DateText(2958465.75), "9999-12-31 18:00:00");
  for (const double days : {2958466.0, -657435.0, 1e300, -1e300, std::numeric_limits<double>::infinity(),
                            std::numeric_limits<double>::quiet_NaN()}) {
    EXPECT_EQ(DateText(days), std::nullopt) << days;
  }
}

TEST(DecodeValue, BytesOfAnotherLengthThanTheTypesHaveNoText) {
  for (const ColumnType type :
       {ColumnType::Byte, ColumnType::Integer, ColumnType::Long, ColumnType::Currency, ColumnType::Single,
        ColumnType::Double, ColumnType::DateTime, ColumnType::Guid, ColumnType::Decimal}) {
    for (const std::size_t length : {0, 3, 18}) {
      EXPECT_EQ(DecodeValue(ColumnOf(type), std::string(length, '\1'), TextForm()), std::nullopt) << TypeName(type);
    }
  }
}

TEST(DecodeValue, ADecimalMayHaveMorePlacesThanDigits) {
  std::string stored(17, '\0');
  stored[13] = 7;
  EXPECT_EQ(DecodeValue(ColumnOf(ColumnType::Decimal, 5), stored, TextForm()), "0.00007");
  EXPECT_EQ(DecodeValue(ColumnOf(ColumnType::Decimal, 255), stored, TextForm())->size(), 257u);
}

TEST(DecodeValue, ADecimalOfWhichTheScaleIsNotKnownHasNoText) {
  EXPECT_EQ(DecodeValue(ColumnOf(ColumnType::Decimal, std::nullopt), std::string(17, '\0'), TextForm()), std::nullopt);
}

TEST(DecodeValue, ADecimalZeroHasNoSign) {
  EXPECT_EQ(DecodeValue(ColumnOf(ColumnType::Decimal, 1), std::string("\x80") + std::string(16, '\0'), TextForm()),
            "0.0");
}

}  // namespace
}  // namespace parvex::jet
