#include "formats/text/unicode.h"

#include <gtest/gtest.h>

namespace parvex {
namespace {

struct CharacterRow {
  std::string_view bytes;
  char32_t code;
  std::size_t length;
  bool isCharacter;
  const char* reason;
};

constexpr CharacterRow kCharacterRows[] = {
    {std::string_view("\0", 1), 0, 1, true, "NUL is a character"},
    {"\x7F", 0x7F, 1, true, "the last of one byte"},
    {"\xC2\x80", 0x80, 2, true, "the first of two bytes"},
    {"\xDF\xBF", 0x7FF, 2, true, "the last of two bytes"},
    {"\xE0\xA0\x80", 0x800, 3, true, "the first of three bytes"},
    {"\xED\x9F\xBF", 0xD7FF, 3, true, "the last before the surrogates"},
    {"\xEE\x80\x80", 0xE000, 3, true, "the first behind the surrogates"},
    {"\xEF\xBF\xBD", 0xFFFD, 3, true, "U+FFFD itself is a character"},
    {"\xEF\xBF\xBE", 0xFFFE, 3, true, "a noncharacter is UTF-8 all the same"},
    {"\xEF\xBF\xBF", 0xFFFF, 3, true, "the last of three bytes"},
    {"\xF0\x90\x80\x80", 0x10000, 4, true, "the first of four bytes"},
    {"\xF4\x8F\xBF\xBF", 0x10FFFF, 4, true, "the last of all"},
    {"\xED\xA0\x80", 0xD800, 3, false, "the first half of a pair keeps its code"},
    {"\xED\xBF\xBF", 0xDFFF, 3, false, "the last half of a pair keeps its code"},
    {"\x80", 0xFFFD, 1, false, "a continuation without lead"},
    {"\xC3", 0xFFFD, 1, false, "a lead at the end"},
    {"\xC3x", 0xFFFD, 1, false, "a lead before something else"},
    {"\xE2\x82", 0xFFFD, 1, false, "a sequence that the end cuts is bytes, each on its own"},
    {"\xE2\x82x", 0xFFFD, 1, false, "a sequence that a letter cuts"},
    {"\xF0\x9F\x98", 0xFFFD, 1, false, "the same of four bytes"},
    {"\xC0\x80", 0xFFFD, 1, false, "no lead: it would begin a longer form only"},
    {"\xC1\xBF", 0xFFFD, 1, false, "the same"},
    {"\xE0\x80\x80", 0xFFFD, 3, false, "NUL in three bytes"},
    {"\xE0\x9F\xBF", 0xFFFD, 3, false, "the largest longer form of three bytes"},
    {"\xF0\x80\x80\x80", 0xFFFD, 4, false, "NUL in four bytes"},
    {"\xF0\x8F\xBF\xBF", 0xFFFD, 4, false, "the largest longer form of four bytes"},
    {"\xF4\x90\x80\x80", 0xFFFD, 4, false, "the first beyond U+10FFFF"},
    {"\xF5\x80\x80\x80", 0xFFFD, 1, false, "no lead: everything it begins is beyond U+10FFFF"},
    {"\xF8\x88\x80\x80\x80", 0xFFFD, 1, false, "a sequence of five bytes is bytes"},
    {"\xFF", 0xFFFD, 1, false, "never a byte of UTF-8"},
};

TEST(Unicode, TheFirstCharacterOfUglyBytes) {
  for (const CharacterRow& row : kCharacterRows) {
    const Utf8Character character = FirstCharacter(row.bytes);
    EXPECT_EQ(character.code, row.code) << row.reason;
    EXPECT_EQ(character.bytes, row.length) << row.reason;
    EXPECT_EQ(character.isCharacter, row.isCharacter) << row.reason;
  }
}

TEST(Unicode, WhatFollowsACharacterChangesNothing) {
  for (const CharacterRow& row : kCharacterRows) {
    const std::string text = std::string(row.bytes) + "z";
    EXPECT_EQ(FirstCharacter(text).code, row.code) << row.reason;
    EXPECT_EQ(FirstCharacter(text).bytes, row.length) << row.reason;
  }
}

TEST(Unicode, EveryCodeIsWrittenAsItIsRead) {
  for (char32_t code = 0; code <= 0x10FFFF; ++code) {
    const std::string text = Utf8Of(code);
    const Utf8Character character = FirstCharacter(text);
    ASSERT_EQ(character.code, code);
    ASSERT_EQ(character.bytes, text.size()) << std::hex << static_cast<unsigned>(code);
    ASSERT_EQ(character.isCharacter, !IsSurrogate(code)) << std::hex << static_cast<unsigned>(code);
  }
}

TEST(Unicode, NextCodePointMovesBehindEachCharacter) {
  const std::string_view text = "a\xC3\xA4\xFF\U0001F600";
  std::size_t pos = 0;
  EXPECT_EQ(NextCodePoint(text, pos), U'a');
  EXPECT_EQ(NextCodePoint(text, pos), U'ä');
  EXPECT_EQ(NextCodePoint(text, pos), kReplacementCharacter);
  EXPECT_EQ(pos, 4u);
  EXPECT_EQ(NextCodePoint(text, pos), U'\U0001F600');
  EXPECT_EQ(pos, text.size());
}

TEST(Unicode, WellFormedTextsAreTheOnesThatStayAsTheyAre) {
  for (const CharacterRow& row : kCharacterRows) {
    const std::string text = "a" + std::string(row.bytes) + "b";
    EXPECT_EQ(IsWellFormed(text), row.isCharacter) << row.reason;
    EXPECT_EQ(WellFormed(text) == text, row.isCharacter) << row.reason;
    EXPECT_EQ(WellFormed(text), FromUtf16(ToUtf16(text))) << row.reason;
    EXPECT_TRUE(IsWellFormed(WellFormed(text))) << row.reason;
  }
  EXPECT_TRUE(IsWellFormed(""));
  EXPECT_EQ(WellFormed("a\xE2\x82"
                       "b"),
            "a\uFFFD\uFFFDb");
}

struct UnitsRow {
  std::u16string units;
  std::string replaced;
  std::string kept;
  const char* reason;
};

TEST(Unicode, HalvesOfPairsAreReplacedOrKept) {
  const UnitsRow rows[] = {
      {{0xD83D, 0xDE00}, "\U0001F600", "\U0001F600", "a whole pair is one character"},
      {{0xD83D}, "\uFFFD", "\xED\xA0\xBD", "a first half at the end"},
      {{0xDE00}, "\uFFFD", "\xED\xB8\x80", "a second half alone"},
      {{0xD83D, u'a'},
       "\uFFFDa",
       "\xED\xA0\xBD"
       "a",
       "a first half before a letter"},
      {{0xDE00, 0xD83D}, "\uFFFD\uFFFD", "\xED\xB8\x80\xED\xA0\xBD", "the halves in the wrong order"},
      {{0xD83D, 0xD83D, 0xDE00}, "\uFFFD\U0001F600", "\xED\xA0\xBD\U0001F600", "a first half before a pair"},
      {{0xDBFF, 0xDFFF}, "\U0010FFFF", "\U0010FFFF", "the last pair"},
      {{0xFFFE, 0xFFFF}, "\uFFFE\uFFFF", "\uFFFE\uFFFF", "noncharacters travel"},
  };
  for (const UnitsRow& row : rows) {
    EXPECT_EQ(FromUtf16(row.units), row.replaced) << row.reason;
    EXPECT_EQ(FromUtf16(row.units, LoneSurrogates::Kept), row.kept) << row.reason;
    EXPECT_EQ(ToUtf16(row.kept, LoneSurrogates::Kept), row.units) << row.reason;
    EXPECT_EQ(FromUtf16(ToUtf16(row.kept)), row.replaced) << row.reason;
  }
}

TEST(Unicode, EveryUnitComesBackWhenHalvesAreKept) {
  for (unsigned unit = 0; unit <= 0xFFFF; ++unit) {
    const std::u16string units = {u'a', static_cast<char16_t>(unit), u'b'};
    ASSERT_EQ(ToUtf16(FromUtf16(units, LoneSurrogates::Kept), LoneSurrogates::Kept), units) << std::hex << unit;
  }
}

TEST(Unicode, TravelsToUtf16AndBack) {
  const std::string text = "a\u007F\u0080ä\u07FF\u0800日\uFFFF\U0001F600\U0010FFFF" + std::string(1, '\0');
  EXPECT_EQ(ToUtf16(text), u"a\u007F\u0080ä\u07FF\u0800日\uFFFF\U0001F600\U0010FFFF" + std::u16string(1, u'\0'));
  EXPECT_EQ(FromUtf16(ToUtf16(text)), text);
}

struct BadRow {
  std::string_view bytes;
  std::size_t replacements;
  const char* reason;
};

TEST(Unicode, WhatIsNoUtf8BecomesReplacementCharacters) {
  static constexpr BadRow kBadRows[] = {
      {"\x80", 1, "a continuation without lead"},
      {"\xC3", 1, "a lead without continuation"},
      {"\xC0\x80", 2, "zero in two bytes"},
      {"\xE0\x80\x80", 1, "zero in three bytes"},
      {"\xED\xA0\x80", 1, "a surrogate"},
      {"\xF4\x90\x80\x80", 1, "beyond the last character"},
      {"\xF8\x88\x80\x80\x80", 5, "a sequence of five bytes"},
  };
  for (const BadRow& row : kBadRows) {
    std::string expected;
    for (std::size_t i = 0; i < row.replacements; ++i) {
      expected += "\uFFFD";
    }
    EXPECT_EQ(FromUtf16(ToUtf16(row.bytes)), expected) << row.reason;
  }
}

TEST(Unicode, HalvesOfSurrogatePairsBecomeReplacementCharacters) {
  EXPECT_EQ(FromUtf16(std::u16string{0xD83D, u'a'}), std::string("\uFFFD") + "a");
  EXPECT_EQ(FromUtf16(std::u16string{0xDE00, 0xD83D}), std::string("\uFFFD") + std::string("\uFFFD"));
}

}  // namespace
}  // namespace parvex
