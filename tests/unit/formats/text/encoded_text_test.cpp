#include "formats/text/encoded_text.h"

#include <gtest/gtest.h>

namespace parvex {
namespace {

using namespace std::string_literals;

struct MarkRow {
  std::string bytes;
  TextEncoding encoding;
  std::optional<std::string> text;
  const char* reason;
};

const MarkRow kMarkRows[] = {
    {"", TextEncoding::Unmarked, std::nullopt, "nothing has no mark"},
    {"abc", TextEncoding::Unmarked, std::nullopt, "no mark"},
    {"\xEF\xBB", TextEncoding::Unmarked, std::nullopt, "two bytes of a mark of three are none"},
    {"\xFF", TextEncoding::Unmarked, std::nullopt, "one byte of a mark of two is none"},
    {"a\0b\0"s, TextEncoding::Unmarked, std::nullopt, "UTF-16 without a mark is not guessed"},
    {" \xEF\xBB\xBF"
     "a",
     TextEncoding::Unmarked, std::nullopt, "a mark stands in front or not at all"},
    {"\xEF\xBB\xBF", TextEncoding::Utf8, "", "a mark alone is an empty text"},
    {"\xEF\xBB\xBF\xC3\xA4", TextEncoding::Utf8, "ä", "UTF-8"},
    {"\xEF\xBB\xBF\xFF\xC3", TextEncoding::Utf8, "\xFF\xC3", "UTF-8 is handed on as it stands"},
    {"\xEF\xBB\xBF\xEF\xBB\xBF", TextEncoding::Utf8, "\xEF\xBB\xBF", "a second mark is a character"},
    {"\xFF\xFE", TextEncoding::Utf16Little, "", "a mark alone"},
    {"\xFF\xFE\xE4\0a\0"s, TextEncoding::Utf16Little, "äa", "the low byte first"},
    {"\xFF\xFE"
     "a\0b"s,
     TextEncoding::Utf16Little, "a", "an odd byte at the end is no unit"},
    {"\xFF\xFE"
     "a",
     TextEncoding::Utf16Little, "", "the same, without a whole unit before it"},
    {"\xFF\xFE\x3D\xD8\x00\xDE"s, TextEncoding::Utf16Little, "\U0001F600", "a pair"},
    {"\xFF\xFE\x3D\xD8"
     "a\0"s,
     TextEncoding::Utf16Little, "\uFFFDa", "half of a pair"},
    {"\xFF\xFE\0\0"s, TextEncoding::Utf16Little, "\0"s, "no mark of UTF-32: a NUL"},
    {"\xFE\xFF", TextEncoding::Utf16Big, "", "a mark alone"},
    {"\xFE\xFF\0\xE4\0a"s, TextEncoding::Utf16Big, "äa", "the high byte first"},
    {"\xFE\xFF\xD8\x3D\xDE\0"s, TextEncoding::Utf16Big, "\U0001F600", "a pair"},
    {"\xFE\xFF\xDE\0\xD8\x3D"s, TextEncoding::Utf16Big, "\uFFFD\uFFFD", "halves in the wrong order"},
    {"\xFE\xFF\0a\0"s, TextEncoding::Utf16Big, "a", "an odd byte at the end"},
};

TEST(EncodedText, TheMarkTellsTheEncoding) {
  for (const MarkRow& row : kMarkRows) {
    EXPECT_EQ(EncodingOf(row.bytes), row.encoding) << row.reason;
    EXPECT_TRUE(row.bytes.starts_with(MarkOf(row.encoding))) << row.reason;
  }
}

TEST(EncodedText, MarkedTextIsReadByItsMark) {
  for (const MarkRow& row : kMarkRows) {
    EXPECT_EQ(MarkedText(row.bytes), row.text) << row.reason;
  }
}

TEST(EncodedText, WhatIsWrittenWithAMarkIsReadBack) {
  const std::string text = "a\0ä\r\n\uFFFE\U0001F600"s;
  EXPECT_EQ(WithMark(text, TextEncoding::Unmarked), text);
  for (const TextEncoding encoding : {TextEncoding::Utf8, TextEncoding::Utf16Little, TextEncoding::Utf16Big}) {
    const std::string bytes = WithMark(text, encoding);
    EXPECT_EQ(EncodingOf(bytes), encoding);
    EXPECT_EQ(MarkedText(bytes), text);
  }
  EXPECT_EQ(WithMark("ä", TextEncoding::Utf16Little), "\xFF\xFE\xE4\0"s);
  EXPECT_EQ(WithMark("ä", TextEncoding::Utf16Big), "\xFE\xFF\0\xE4"s);
  EXPECT_EQ(WithMark("\xFF", TextEncoding::Utf16Big), "\xFE\xFF\xFF\xFD");
}

TEST(EncodedText, UnitsTravelToBytesAndBackInBothOrders) {
  const std::u16string units = {u'a', 0xD83D, 0, 0x1234};
  EXPECT_EQ(BytesOf(units, TextEncoding::Utf16Little), "a\0\x3D\xD8\0\0\x34\x12"s);
  EXPECT_EQ(BytesOf(units, TextEncoding::Utf16Big), "\0a\xD8\x3D\0\0\x12\x34"s);
  EXPECT_EQ(UnitsOf("a\0\x3D\xD8\0\0\x34\x12"s, TextEncoding::Utf16Little), units);
  EXPECT_EQ(UnitsOf("\0a\xD8\x3D\0\0\x12\x34"s, TextEncoding::Utf16Big), units);
}

}  // namespace
}  // namespace parvex
