#include "formats/text/text.h"

#include <gtest/gtest.h>

namespace parvex {
namespace {

constexpr std::string_view kPair = "\U0001F600";  // one character of two units

TEST(Text, LengthCountsUtf16Units) {
  EXPECT_EQ(LengthInUnits(""), 0u);
  EXPECT_EQ(LengthInUnits("abc"), 3u);
  EXPECT_EQ(LengthInUnits("Gerät"), 5u);
  EXPECT_EQ(LengthInUnits("日本"), 2u);
  EXPECT_EQ(LengthInUnits(kPair), 2u);
}

TEST(Text, EveryByteOutsideASequenceIsOneUnit) {
  EXPECT_EQ(LengthInUnits("\xE4"), 1u);
  EXPECT_EQ(LengthInUnits("\xE4ger"), 4u);
  EXPECT_EQ(LengthInUnits("\x80\x80"), 2u);
  EXPECT_EQ(LengthInUnits("\xF0\x9F\x98"), 3u);
  EXPECT_EQ(LengthInUnits("\xFF\xFE"), 2u);
}

TEST(Text, FirstUnitsCutsBetweenCharacters) {
  EXPECT_EQ(FirstUnits("Gerät", 4), "Gerä");
  EXPECT_EQ(FirstUnits("Gerät", 0), "");
  EXPECT_EQ(FirstUnits("Gerät", 5), "Gerät");
  EXPECT_EQ(FirstUnits("Gerät", 99), "Gerät");
}

TEST(Text, ACutInsideASurrogatePairFallsBeforeIt) {
  const std::string text = "a" + std::string(kPair) + "b";
  EXPECT_EQ(FirstUnits(text, 2), "a");
  EXPECT_EQ(FirstUnits(text, 3), "a" + std::string(kPair));
  EXPECT_EQ(DropUnits(text, 2), std::string(kPair) + "b");
  EXPECT_EQ(LastUnits(text, 2), std::string(kPair) + "b");
}

TEST(Text, DropUnitsGivesTheRest) {
  EXPECT_EQ(DropUnits("Gerät", 4), "t");
  EXPECT_EQ(DropUnits("Gerät", 0), "Gerät");
  EXPECT_EQ(DropUnits("Gerät", 5), "");
  EXPECT_EQ(DropUnits("Gerät", 99), "");
}

TEST(Text, LastUnitsCountsFromTheEnd) {
  EXPECT_EQ(LastUnits("Gerät", 2), "ät");
  EXPECT_EQ(LastUnits("Gerät", 0), "");
  EXPECT_EQ(LastUnits("Gerät", 99), "Gerät");
}

TEST(Text, TrimBlanksTakesOnlyBlanks) {
  EXPECT_EQ(TrimBlanks("  a b  "), "a b");
  EXPECT_EQ(TrimBlanks("\ta\n"), "\ta\n");
  EXPECT_EQ(TrimBlanks("   "), "");
  EXPECT_EQ(TrimBlanks(""), "");
  EXPECT_EQ(TrimBlanks(" \u00A0 "), "\u00A0");
}

TEST(Text, ToUpperKnowsAsciiAndLatin1) {
  EXPECT_EQ(ToUpper("abcxyz{`"), "ABCXYZ{`");
  EXPECT_EQ(ToUpper("àäöüþ"), "ÀÄÖÜÞ");
  EXPECT_EQ(ToUpper("÷ß×ÿ"), "÷ß×ÿ");
  EXPECT_EQ(ToUpper("дз"), "дз");
}

TEST(Text, ToUpperLeavesATruncatedSequenceAlone) { EXPECT_EQ(ToUpper("a\xC3"), "A\xC3"); }

TEST(Text, EqualIgnoringCaseComparesWholeTexts) {
  EXPECT_TRUE(EqualIgnoringCase("Größe", "GRÖßE"));
  EXPECT_TRUE(EqualIgnoringCase("", ""));
  EXPECT_FALSE(EqualIgnoringCase("abc", "abcd"));
  EXPECT_FALSE(EqualIgnoringCase("a", "ä"));
}

TEST(Text, ReplaceAllReplacesEveryOccurrenceOnce) {
  EXPECT_EQ(ReplaceAll("a.b.c", ".", "::"), "a::b::c");
  EXPECT_EQ(ReplaceAll("aaa", "aa", "b"), "ba");
  EXPECT_EQ(ReplaceAll("aa", "a", "aa"), "aaaa");
  EXPECT_EQ(ReplaceAll("abc", "x", "y"), "abc");
  EXPECT_EQ(ReplaceAll("abc", "b", ""), "ac");
}

}  // namespace
}  // namespace parvex
