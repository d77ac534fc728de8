#include "cli/terminal/printable.h"

#include <gtest/gtest.h>

#include <string>

namespace parvex::cli {
namespace {

const std::string kReplaced = "\xEF\xBF\xBD";

struct TextCase {
  const char* why;
  std::string text;
  std::string printable;
};

class PrintableText : public testing::TestWithParam<TextCase> {};

TEST_P(PrintableText, ControlsNoTerminal) { EXPECT_EQ(Printable(GetParam().text), GetParam().printable); }

INSTANTIATE_TEST_SUITE_P(
    Texts, PrintableText,
    testing::Values(
        TextCase{"Empty", "", ""}, TextCase{"Plain", "RTU-1 \"x\" <y> & z~", "RTU-1 \"x\" <y> & z~"},
        TextCase{"LettersBeyondAscii", "Küche \xE2\x82\xAC \xC2\xA0x", "Küche \xE2\x82\xAC \xC2\xA0x"},
        TextCase{"BeyondTheFirstPlane", "\xF0\x9F\x91\x82", "\xF0\x9F\x91\x82"},
        TextCase{"LineBreaksAndTabs", "a\r\nb\tc\n", "a  b c "},
        TextCase{"EscapeSequence", "\x1B[2J\x1B]0;title\x07", kReplaced + "[2J" + kReplaced + "]0;title" + kReplaced},
        TextCase{"Nul", std::string("a\0b", 3), "a" + kReplaced + "b"},
        TextCase{"BackspaceOverwrites", "1000\b\b\b", "1000" + kReplaced + kReplaced + kReplaced},
        TextCase{"Delete", "a\x7F", "a" + kReplaced},
        TextCase{"OneByteControlSequence",
                 "\xC2\x9B"
                 "2J\xC2\x80\xC2\x9F",
                 kReplaced + "2J" + kReplaced + kReplaced},
        TextCase{"LastBeforeAndFirstBehindControls", " ~\xC2\xA0", " ~\xC2\xA0"},
        TextCase{"LineAndParagraphSeparator", "a\xE2\x80\xA8\xE2\x80\xA9", "a" + kReplaced + kReplaced},
        TextCase{"RightToLeftOverride",
                 "cod\xE2\x80\xAE"
                 "cba\xE2\x80\xAC",
                 "cod" + kReplaced + "cba" + kReplaced},
        TextCase{"Isolates", "\xE2\x81\xA6x\xE2\x81\xA9", kReplaced + "x" + kReplaced},
        TextCase{"DirectionMarks", "\xE2\x80\x8E\xE2\x80\x8F", kReplaced + kReplaced},
        TextCase{"TheirNeighbours", "\xE2\x80\x8D\xE2\x80\x90\xE2\x80\xA7\xE2\x80\xAF\xE2\x81\xA5\xE2\x81\xAA",
                 "\xE2\x80\x8D\xE2\x80\x90\xE2\x80\xA7\xE2\x80\xAF\xE2\x81\xA5\xE2\x81\xAA"},
        TextCase{"RightToLeftLettersStay", "\xD7\xA9\xD7\x9C", "\xD7\xA9\xD7\x9C"}),
    [](const testing::TestParamInfo<TextCase>& info) { return std::string(info.param.why); });

TEST(PrintableTextOfBytes, IsValidUtf8) {
  EXPECT_EQ(Printable("a\xFFz").find('\xFF'), std::string::npos);
  EXPECT_EQ(Printable("a\xFFz").front(), 'a');
  EXPECT_EQ(Printable("a\xFFz").back(), 'z');
  EXPECT_EQ(Printable("\xE2\x82").find('\xE2'), std::string::npos) << "cut off";
}

TEST(JsonForTerminals, IsTheSameDocument) {
  EXPECT_EQ(EscapedJson("{\n \"a\": \"x\xC2\x9B\x7F\xE2\x80\xAE\xE2\x82\xAC\"\n}\n"),
            "{\n \"a\": \"x\\u009B\\u007F\\u202E\xE2\x82\xAC\"\n}\n");
}

TEST(Counting, HasOneSingular) {
  EXPECT_EQ(Counted(0, "tag"), "0 tags");
  EXPECT_EQ(Counted(1, "tag"), "1 tag");
  EXPECT_EQ(Counted(2, "base unit"), "2 base units");
  EXPECT_EQ(Counted(11, "byte"), "11 bytes");
}

}  // namespace
}  // namespace parvex::cli
