#include "adapters/posix/code_pages.h"

#include <gtest/gtest.h>

#include <tuple>
#include <vector>

namespace parvex::posix {
namespace {

std::string Decoded(std::uint16_t codePage, std::string_view bytes) { return CodePageOf(codePage)->Decode(bytes); }

std::optional<std::string> Encoded(std::uint16_t codePage, std::string_view text) {
  return CodePageOf(codePage)->Encode(text);
}

TEST(CodePageOf, KnowsThoseOfWindowsLanguagesAndNoOther) {
  for (const std::uint16_t number : {874, 932, 936, 949, 950, 1250, 1251, 1252, 1253, 1254, 1255, 1256, 1257, 1258}) {
    EXPECT_NE(CodePageOf(number), nullptr) << number;
  }
  for (const std::uint16_t number : {0, 37, 437, 850, 1200, 1249, 1259, 10000, 28591, 65001}) {
    EXPECT_EQ(CodePageOf(number), nullptr) << number;
  }
}

TEST(CodePageOf, TextsTravelThereAndBack) {
  const std::vector<std::tuple<std::uint16_t, std::string, std::string>> texts{{1250, "\xA3\xF3\x64\x9F", "Łódź"},
                                                                               {1251, "\xCC\xE8\xF0", "Мир"},
                                                                               {1252, "\x80 M\xFCller", "€ Müller"},
                                                                               {1253, "\xD9", "Ω"},
                                                                               {874, "\xA1\xD2", "กา"},
                                                                               {932, "\x93\xFA\x96\x7B\\", "日本\\"},
                                                                               {1258, "ti\xEA\xECng", "tiếng"}};
  for (const auto& [codePage, bytes, text] : texts) {
    EXPECT_EQ(Decoded(codePage, bytes), text) << codePage;
    EXPECT_EQ(Encoded(codePage, text), bytes) << codePage;
  }
}

TEST(CodePageOf, WhatACodePageLacksIsNeverReplaced) {
  EXPECT_EQ(Encoded(1251, "Müller"), std::nullopt);
  EXPECT_EQ(Encoded(1252, "Мир"), std::nullopt);
  EXPECT_EQ(Encoded(1252, "a\xFF"), std::nullopt) << "no UTF-8";
  EXPECT_EQ(Encoded(1251, "a\xFF"), std::nullopt) << "no UTF-8";
  EXPECT_EQ(Encoded(932, "😀"), std::nullopt);
  EXPECT_EQ(Encoded(1251, "what?"), "what?");
}

TEST(CodePageOf, AByteWithoutCharacterIsMarkedAndTheRestIsRead) {
  EXPECT_EQ(Decoded(1253,
                    "a\xAA\xFF"
                    "b"),
            "a\uFFFD\uFFFDb");
  EXPECT_EQ(Decoded(932, "a\x93"), "a\uFFFD") << "half a character";
  EXPECT_EQ(Decoded(1258, "a\xFF\xD2"), "aÿ̉") << "a letter, a letter, an accent";
}

TEST(CodePageOf, LongTextsAreReadWhole) {
  std::string bytes;
  std::string text;
  for (int i = 0; i < 5000; ++i) {
    bytes += i % 7 == 0 ? "\xFF" : "\xC1";
    text += i % 7 == 0 ? "\uFFFD" : "ม";
  }
  EXPECT_EQ(Decoded(874, bytes), text);
}

}  // namespace
}  // namespace parvex::posix
