#include "formats/text/text.h"

#include <gtest/gtest.h>

namespace parvex {
namespace {

constexpr std::string_view kPair = "\U0001F600";  // one character of two units
constexpr std::string_view kReplacement = "\uFFFD";

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

TEST(Text, TravelsToUtf16AndBack) {
  const std::string text =
      "a\u007F\u0080ä\u07FF\u0800日\uFFFF" + std::string(kPair) + "\U0010FFFF" + std::string(1, '\0');
  EXPECT_EQ(ToUtf16(text), u"a\u007F\u0080ä\u07FF\u0800日\uFFFF\U0001F600\U0010FFFF" + std::u16string(1, u'\0'));
  EXPECT_EQ(FromUtf16(ToUtf16(text)), text);
}

struct BadRow {
  std::string_view bytes;
  std::size_t replacements;
  const char* reason;
};

TEST(Text, WhatIsNoUtf8BecomesReplacementCharacters) {
  static constexpr BadRow kRows[] = {
      {"\x80", 1, "a continuation without lead"},
      {"\xC3", 1, "a lead without continuation"},
      {"\xC0\x80", 2, "zero in two bytes"},
      {"\xE0\x80\x80", 1, "zero in three bytes"},
      {"\xED\xA0\x80", 1, "a surrogate"},
      {"\xF4\x90\x80\x80", 1, "beyond the last character"},
      {"\xF8\x88\x80\x80\x80", 5, "a sequence of five bytes"},
  };
  for (const BadRow& row : kRows) {
    std::string expected;
    for (std::size_t i = 0; i < row.replacements; ++i) {
      expected += kReplacement;
    }
    EXPECT_EQ(FromUtf16(ToUtf16(row.bytes)), expected) << row.reason;
  }
}

TEST(Text, HalvesOfSurrogatePairsBecomeReplacementCharacters) {
  EXPECT_EQ(FromUtf16(std::u16string{0xD83D, u'a'}), std::string(kReplacement) + "a");
  EXPECT_EQ(FromUtf16(std::u16string{0xDE00, 0xD83D}), std::string(kReplacement) + std::string(kReplacement));
}

}  // namespace
}  // namespace parvex
