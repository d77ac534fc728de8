#include "cli/quote/amounts.h"

#include <gtest/gtest.h>

#include <limits>
#include <optional>
#include <string>
#include <utility>

namespace parvex::cli {
namespace {

struct ProductCase {
  std::string price;
  std::string quantity;
  std::optional<Hundredths> product;
  const char* why;
};

TEST(Amounts, ArePriceTimesQuantityInHundredths) {
  const ProductCase cases[] = {
      {"12.50", "2", 2500, "the usual"},
      {"8450", "1", 845000, "no decimals"},
      {"0.1", "3", 30, "no exact binary fraction"},
      {"19.99", "100", 199900, "nor this"},
      {"-12.5", "2", -2500, "a rebate"},
      {"-2", "-3", 600, "two signs"},
      {".5", "1", 50, "no digit before the point"},
      {"5.", "1", 500, "none behind it"},
      {"007", "1", 700, "leading noughts"},
      {"", "3", 0, "no price"},
      {"12.5", "", 0, "no quantity"},
      {"", "", 0, "neither"},
      {"2.5", "1.5", 375, "a broken quantity"},
  };
  for (const ProductCase& one : cases) {
    EXPECT_EQ(Multiply(one.price, one.quantity), one.product) << one.why;
  }
}

TEST(Amounts, RoundHalvesAwayFromZero) {
  const ProductCase cases[] = {
      {"1.005", "1", 101, "its binary fraction lies below a half"},
      {"-1.005", "1", -101, "below zero"},
      {"1.015", "1", 102, "its binary fraction lies below, too"},
      {"1.004999", "1", 100, "just below a half"},
      {"0.005", "1", 1, "the smallest that counts"},
      {"0.0049", "1", 0, "the largest that does not"},
      {"-0.001", "1", 0, "no sign is left"},
      {"0.333", "3", 100, "rounded once, behind the product"},
  };
  for (const ProductCase& one : cases) {
    EXPECT_EQ(Multiply(one.price, one.quantity), one.product) << one.why;
  }
}

TEST(Amounts, AreNoneForWhatIsNoDecimalNumber) {
  for (const std::string& text :
       {std::string(" 1"), std::string("1 "), std::string("+1"), std::string("1,5"), std::string("1.234,50"),
        std::string("1.2.3"), std::string("1e3"), std::string("0x10"), std::string("$1"), std::string("-"),
        std::string("."), std::string("inf"), std::string("-infinity"), std::string("nan"), std::string("call us"),
        std::string("1\0", 2), std::string("\xEF\xBC\x91"), std::string(400, '9')}) {
    EXPECT_EQ(Multiply(text, "1"), std::nullopt) << text;
    EXPECT_EQ(Multiply("1", text), std::nullopt) << text;
    EXPECT_EQ(Multiply(text, ""), std::nullopt) << text << " is none even where the other counts as 0";
  }
}

TEST(Amounts, EndBelowTenBillion) {
  EXPECT_EQ(Multiply("9999999999.99", "1"), 999'999'999'999);
  EXPECT_EQ(Multiply("-9999999999.99", "1"), -999'999'999'999);
  EXPECT_EQ(Multiply("10000000000", "1"), std::nullopt);
  EXPECT_EQ(Multiply("-100000", "100000"), std::nullopt);
  EXPECT_EQ(Multiply(std::string(300, '9'), std::string(300, '9')), std::nullopt) << "a product without an end";
}

TEST(Amounts, AreWrittenWithTwoDecimalsAndGroupsOfThree) {
  const std::pair<Hundredths, const char*> cases[] = {
      {0, "0.00"},
      {5, "0.05"},
      {-5, "-0.05"},
      {99, "0.99"},
      {100, "1.00"},
      {99'999, "999.99"},
      {100'000, "1,000.00"},
      {-123'450, "-1,234.50"},
      {10'000'000, "100,000.00"},
      {100'000'000, "1,000,000.00"},
      {std::numeric_limits<Hundredths>::max(), "92,233,720,368,547,758.07"},
      {std::numeric_limits<Hundredths>::min(), "-92,233,720,368,547,758.08"},
  };
  for (const auto& [amount, text] : cases) {
    EXPECT_EQ(FormatAmount(amount), text);
  }
}

TEST(Amounts, OfOneThingAreWrittenInTheSameWayAndLoseNoDigit) {
  const std::pair<std::string, std::string> cases[] = {
      {"18450.00", "18,450.00"},
      {"8450", "8,450.00"},
      {"100", "100.00"},
      {"1234567.5", "1,234,567.50"},
      {"0.125", "0.125"},
      {"-1000", "-1,000.00"},
      {".5", "0.50"},
      {"5.", "5.00"},
      {"1234.56789", "1,234.56789"},
      {"", ""},
      {"call us", "call us"},
      {"1e3", "1e3"},
      {"1,000", "1,000"},
      {"-", "-"},
      {".", "."},
      {"nan", "nan"},
  };
  for (const auto& [price, written] : cases) {
    EXPECT_EQ(FormatPrice(price), written);
  }
}

TEST(Amounts, OfAChangeHaveASign) {
  EXPECT_EQ(SignedAmount(123'450), "+1,234.50");
  EXPECT_EQ(SignedAmount(-5), "-0.05");
  EXPECT_EQ(SignedAmount(0), "0.00");
}

TEST(Amounts, ForOtherProgramsHaveNoGroups) {
  EXPECT_EQ(PlainAmount(123'456'789), "1234567.89");
  EXPECT_EQ(PlainAmount(-7), "-0.07");
  EXPECT_EQ(PlainAmount(std::numeric_limits<Hundredths>::min()), "-92233720368547758.08");
}

}  // namespace
}  // namespace parvex::cli
