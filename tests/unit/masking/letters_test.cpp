#include "masking/letters.h"

#include <gtest/gtest.h>

#include <set>
#include <string>

#include "formats/text/unicode.h"
#include "tests/unit/masking/masked_text.h"

namespace parvex::masking {
namespace {

using test::CodesIn;
using test::Utf8Of;

std::string Masked(const std::string& text, const Key& key = {1, 2}) {
  std::u32string codes = CodesIn(text);
  Letters(key).Mask(codes);
  return Utf8Of(codes);
}

std::string MaskedNumbers(const std::string& text) {
  std::u32string codes = CodesIn(text);
  Letters(Key{1, 2}).MaskNumbers(codes);
  return Utf8Of(codes);
}

char KindOf(char32_t c) {
  if (IsDigit(c)) {
    return '0';
  }
  if (!IsMasked(c)) {
    return '.';
  }
  return Lowered(c) == c ? 'a' : 'A';
}

TEST(Letters, KeepLengthKindAndCaseAndChangeEachOne) {
  for (const std::string text :
       {"Riverside Clinic",
        "K\xC3\xBC"
        "che & Caf\xC3\xA9 <EG>",
        "\xC3\x98"
        "deg\xC3\xA5rd",
        "RTU-1", "+1 555 0162", "\xC5\xA0koda", "\xD0\x94\xD0\xBE\xD0\xBC", "\xCE\x94\xCE\xB1"}) {
    const std::u32string before = CodesIn(text);
    const std::u32string after = CodesIn(Masked(text));
    EXPECT_EQ(Masked(text).size(), text.size()) << text;
    ASSERT_EQ(after.size(), before.size()) << text;
    for (std::size_t i = 0; i < before.size(); ++i) {
      EXPECT_EQ(KindOf(after[i]), KindOf(before[i])) << text;
      EXPECT_EQ(after[i] == before[i], !IsMasked(before[i])) << text;
    }
  }
}

TEST(Letters, MakeTheSameWordTheSameWhateverStandsAroundItAndHoweverItIsWritten) {
  const std::string whole = Masked("Harbour Annex");
  EXPECT_EQ(whole, Masked("Harbour") + " " + Masked("Annex"));
  EXPECT_EQ(Masked("HARBOUR").substr(0, 1), Masked("Harbour").substr(0, 1));
  EXPECT_NE(Masked("HARBOUR"), Masked("Harbour"));
}

TEST(Letters, KeepWordsThatDifferDifferent) {
  std::set<std::string> seen;
  for (int number = 0; number < 1000; ++number) {
    EXPECT_TRUE(seen.insert(Masked(std::to_string(number))).second) << number;
  }
}

TEST(Letters, ComeFromTheKey) {
  EXPECT_EQ(Masked("Riverside Clinic", {1, 2}), Masked("Riverside Clinic", {1, 2}));
  EXPECT_NE(Masked("Riverside Clinic", {1, 2}), Masked("Riverside Clinic", {1, 3}));
  EXPECT_NE(Masked("Riverside Clinic", {1, 2}), Masked("Riverside Clinic", {2, 2}));
}

TEST(Letters, MakeOneNumberOfAllWaysToWriteIt) {
  const std::string number = MaskedNumbers("18450");
  EXPECT_NE(number, "18450");
  EXPECT_EQ(number.size(), 5u);
  EXPECT_NE(number[0], '0');
  EXPECT_EQ(MaskedNumbers("18450.00"), number + ".00");
  EXPECT_EQ(MaskedNumbers("18,450.00"), number.substr(0, 2) + "," + number.substr(2) + ".00");
  EXPECT_EQ(MaskedNumbers("-18450 EUR"), "-" + number + " EUR");
  EXPECT_EQ(MaskedNumbers("1049.90"), MaskedNumbers("1049.9") + "0");
  EXPECT_EQ(MaskedNumbers("0.00"), "0.00");
  EXPECT_EQ(MaskedNumbers(""), "");
}

}  // namespace
}  // namespace parvex::masking
