#include <gtest/gtest.h>

#include "adapters/windows/code_page_text.h"
#include "tests/support/raised_by.h"

// Conversions by code page number, with functions that refuse what Windows refuses: Wine lets more pass.

namespace parvex::windows {
namespace {

constexpr UINT kUtf8 = 65001;

bool TakesNoFlagAtAll(UINT codePage) {
  for (const UINT strict : {42u, 50220u, 50221u, 50222u, 50225u, 50227u, 50229u, 52936u, 65000u}) {
    if (codePage == strict) {
      return true;
    }
  }
  return codePage >= 57002 && codePage <= 57011;
}

int WINAPI StrictToBytes(UINT codePage, DWORD flags, LPCWSTR units, INT count, LPSTR bytes, INT size,
                         LPCSTR replacement, LPBOOL replaced) {
  const bool isStrict = TakesNoFlagAtAll(codePage) || codePage == kUtf8 || codePage == 54936;
  if (isStrict && (flags & ~(codePage == kUtf8 ? WC_ERR_INVALID_CHARS : 0u)) != 0) {
    SetLastError(ERROR_INVALID_FLAGS);
    return 0;
  }
  if ((codePage == kUtf8 || codePage == 65000) && (replacement != nullptr || replaced != nullptr)) {
    SetLastError(ERROR_INVALID_PARAMETER);
    return 0;
  }
  return WideCharToMultiByte(codePage, flags, units, count, bytes, size, replacement, replaced);
}

int WINAPI StrictToUnits(UINT codePage, DWORD flags, LPCSTR bytes, INT count, LPWSTR units, INT size) {
  if (TakesNoFlagAtAll(codePage) && flags != 0) {
    SetLastError(ERROR_INVALID_FLAGS);
    return 0;
  }
  return MultiByteToWideChar(codePage, flags, bytes, count, units, size);
}

constexpr SystemConversions kStrict = {StrictToBytes, StrictToUnits};

struct Sample {
  UINT codePage;
  const char* text;
  const char* bytes;
};

void PrintTo(const Sample& sample, std::ostream* out) { *out << sample.codePage; }

class CodePageText : public testing::TestWithParam<Sample> {};

TEST_P(CodePageText, TravelsThereAndBackAsStrictlyAsWindowsAsks) {
  const auto& [codePage, text, bytes] = GetParam();
  if (!IsValidCodePage(codePage)) {
    GTEST_SKIP() << "this system has no table for " << codePage;
  }
  EXPECT_EQ(ToCodePage(text, codePage, kStrict), bytes);
  EXPECT_EQ(FromCodePage(bytes, codePage, kStrict), text);
  EXPECT_EQ(ToCodePageExactly(text, codePage, kStrict), bytes);
  EXPECT_EQ(FromCodePageExactly(bytes, codePage, kStrict), text);
}

INSTANTIATE_TEST_SUITE_P(CodePages, CodePageText,
                         testing::Values(Sample{kUtf8, "Küche 日 \U0001F600", "Küche 日 \U0001F600"},
                                         Sample{1252, "Küche €",
                                                "K\xFC"
                                                "che \x80"},
                                         Sample{932, "日", "\x93\xFA"}, Sample{54936, "日", "\xC8\xD5"},
                                         Sample{65000, "日", "+ZeU-"}, Sample{20127, "plain", "plain"},
                                         Sample{28595, "Я", "\xCF"}, Sample{50220, "日", "\x1B$BF|\x1B(B"}));

TEST(CodePageText, WhatACodePageLacksIsAQuestionMarkOrNothingAndNeverALookAlike) {
  EXPECT_EQ(ToCodePage("a\u0101b", 1252, kStrict), "a?b") << "a with a bar is no a";
  EXPECT_EQ(ToCodePageExactly("a\u0101b", 1252, kStrict), std::nullopt);
  EXPECT_EQ(ToCodePageExactly("日", 28595, kStrict), std::nullopt);
  EXPECT_EQ(ToCodePageExactly("\xED\xA0\x80", kUtf8, kStrict), std::nullopt) << "half of a pair";
}

TEST(CodePageText, BytesThatAreNoCharacterAreRefusedWhereExactnessIsAskedFor) {
  EXPECT_EQ(FromCodePageExactly("a\xE9", kUtf8, kStrict), std::nullopt);
  EXPECT_EQ(FromCodePageExactly("a\x93", 932, kStrict), std::nullopt);
  EXPECT_EQ(FromCodePage("a\xFFz", kUtf8, kStrict), "a\uFFFDz");
}

TEST(CodePageText, AnEmptyTextIsNoFailure) {
  EXPECT_EQ(ToCodePage("", kUtf8, kStrict), "");
  EXPECT_EQ(FromCodePage("", 1252, kStrict), "");
  EXPECT_EQ(ToCodePageExactly("", 65000, kStrict), "");
}

TEST(CodePageText, AFailedConversionIsAnErrorThatNamesTheCodePage) {
  EXPECT_EQ(test::ErrorIn([] { ToCodePage("a", 12345); }).substr(0, 51),
            "5 cannot write a text in the code page 12345: the s");
  EXPECT_EQ(test::ErrorIn([] { FromCodePage("a", 12345); }).substr(0, 50),
            "5 cannot read a text in the code page 12345: the s");
  EXPECT_EQ(ToCodePageExactly("a", 12345), std::nullopt);
  EXPECT_FALSE(IsKnownCodePage(12345));
  EXPECT_TRUE(IsKnownCodePage(kUtf8));
}

}  // namespace
}  // namespace parvex::windows
