#include <gtest/gtest.h>

#include <string>

#include "adapters/windows/com_pointer.h"
#include "adapters/windows/wide_text.h"

namespace parvex::windows {
namespace {

TEST(WideText, ComesBackUnitByUnitWhateverItHolds) {
  for (unsigned unit = 0; unit <= 0xFFFF; ++unit) {
    const std::wstring text = {L'a', static_cast<wchar_t>(unit), L'b'};
    ASSERT_EQ(Widen(Narrow(text)), text) << std::hex << unit;
  }
}

TEST(WideText, KeepsHalvesOfPairsInEveryOrder) {
  for (const wchar_t first : {0xD7FF, 0xD800, 0xDBFF, 0xDC00, 0xDFFF, 0xE000}) {
    for (const wchar_t second : {0xD7FF, 0xD800, 0xDBFF, 0xDC00, 0xDFFF, 0xE000}) {
      for (const wchar_t third : {0xD83D, 0xDE00}) {
        const std::wstring text = {first, second, third};
        EXPECT_EQ(Widen(Narrow(text)), text) << std::hex << int{first} << ' ' << int{second} << ' ' << int{third};
      }
    }
  }
}

TEST(WideText, OfAWholePairIsOneSequenceOfFourBytes) {
  EXPECT_EQ(Narrow(L"\xD83D\xDE00"), "\xF0\x9F\x98\x80");
  EXPECT_EQ(Widen("\xF0\x9F\x98\x80"), L"\xD83D\xDE00");
  EXPECT_EQ(Narrow({L"\xDBFF\xDFFF", 2}), "\xF4\x8F\xBF\xBF");
}

TEST(WideText, ReadsBytesThatAreNoTextAsReplacements) {
  for (const char* bytes :
       {"\x80", "\xC0\x80", "\xE0\x80\x80", "\xF5\x80\x80\x80", "\xF4\x90\x80\x80", "\xC3", "\xFF"}) {
    EXPECT_EQ(Widen(bytes).substr(0, 1), L"\xFFFD") << bytes;
  }
  EXPECT_EQ(Widen("\xC3x"), L"\xFFFDx");
}

TEST(WideText, OfABstrKeepsNulsAndAMissingOneIsEmpty) {
  const Bstr text(std::string_view("a\0b", 3));
  EXPECT_EQ(SysStringLen(text.Get()), 3u);
  EXPECT_EQ(text.Text(), std::string_view("a\0b", 3));
  EXPECT_EQ(TextOf(nullptr), "");
}

}  // namespace
}  // namespace parvex::windows
