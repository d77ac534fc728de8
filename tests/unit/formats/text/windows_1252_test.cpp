#include "formats/text/windows_1252.h"

#include <gtest/gtest.h>

#include <set>

#include "formats/text/unicode.h"

namespace parvex::posix {
namespace {

TEST(Windows1252, EveryByteIsACharacterOfItsOwn) {
  Windows1252 codePage;
  std::string bytes;
  for (int byte = 0; byte < 256; ++byte) {
    bytes.push_back(static_cast<char>(byte));
  }
  EXPECT_EQ(codePage.ToAnsi(codePage.FromAnsi(bytes)), bytes);
  const std::u16string units = ToUtf16(codePage.FromAnsi(bytes));
  EXPECT_EQ(units.size(), 256u);
  EXPECT_EQ(std::set<char16_t>(units.begin(), units.end()).size(), 256u);
}

TEST(Windows1252, NoLookAlikeTakesThePlaceOfACharacter) {
  Windows1252 codePage;
  EXPECT_EQ(codePage.ToAnsi("Ā ａ ∞ \u2212"), "? ? ? ?");
  EXPECT_EQ(codePage.ToAnsi("\u0080\u009F"), "??") << "only five control characters have bytes";
}

TEST(Windows1252, WhatIsNoUtf8BecomesAQuestionMarkForEachByte) {
  Windows1252 codePage;
  EXPECT_EQ(codePage.ToAnsi("a\xE4z"), "a?z");
  EXPECT_EQ(codePage.ToAnsi("\xC3"), "?");
  EXPECT_EQ(codePage.ToAnsi("\x80\xFF."), "??.");
}

TEST(Windows1252, LettersAtEveryPlaceOfALongTextAreConverted) {
  Windows1252 codePage;
  for (std::size_t pos = 0; pos < 40; ++pos) {
    std::string bytes(40, 'x');
    bytes[pos] = '\xE4';
    std::string text(39, 'x');
    text.insert(pos, "ä");
    EXPECT_EQ(codePage.FromAnsi(bytes), text);
    EXPECT_EQ(codePage.ToAnsi(text), bytes);
  }
}

}  // namespace
}  // namespace parvex::posix
