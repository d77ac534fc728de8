#include "formats/text/letter_case.h"

#include <gtest/gtest.h>

#include <string>

namespace parvex {
namespace {

TEST(Capitals, OfTheAlphabetsThatHaveThem) {
  const std::u16string letters = u"azàþÿąžλωжяѐաֆａｚ";
  const std::u16string capitals = u"AZÀÞŸĄŽΛΩЖЯЀԱՖＡＺ";
  for (std::size_t i = 0; i < letters.size(); ++i) {
    EXPECT_EQ(CapitalOf(letters[i]), capitals[i]) << i;
    EXPECT_EQ(CapitalOf(capitals[i]), capitals[i]) << i;
  }
}

TEST(Capitals, AreNeverBorrowedAndNeverTwoUnits) {
  for (const char16_t letter : std::u16string(u"ßıİſςµ÷×ﬁ0_@`{一\xD800")) {
    EXPECT_EQ(CapitalOf(letter), letter) << static_cast<unsigned>(letter);
  }
}

TEST(Capitals, AreCapitalsThemselves) {
  int letters = 0;
  for (unsigned unit = 0; unit <= 0xFFFF; ++unit) {
    const char16_t capital = CapitalOf(static_cast<char16_t>(unit));
    EXPECT_EQ(CapitalOf(capital), capital) << unit;
    letters += capital != unit ? 1 : 0;
  }
  EXPECT_GT(letters, 1000);
}

TEST(SameNames, DifferInLetterCaseOnly) {
  EXPECT_TRUE(IsSameName("Жилой дом.txt", "жИЛОЙ ДОМ.TXT"));
  EXPECT_TRUE(IsSameName("", ""));
  EXPECT_FALSE(IsSameName("ж", "з"));
  EXPECT_FALSE(IsSameName("straße", "STRASSE"));
}

}  // namespace
}  // namespace parvex
