#include "formats/text/terminal_text.h"

#include <gtest/gtest.h>

#include "formats/text/unicode.h"

namespace parvex {
namespace {

const std::string kReplaced = "\xEF\xBF\xBD";

TEST(TerminalText, KeepsLinesAndTabs) {
  EXPECT_EQ(TerminalText("a\nb\tc\n"), "a\nb\tc\n");
  EXPECT_EQ(TerminalLine("a\nb\tc\n"), "a b c ");
}

TEST(TerminalText, EndsEveryLineWithALineFeedSoThatNoneIsWrittenOver) {
  EXPECT_EQ(TerminalText("a\r\nb\rc\r\r\n"), "a\nb\nc\n\n");
}

TEST(TerminalText, ReplacesWhatATerminalObeys) {
  EXPECT_EQ(TerminalText("\x1B[2J\x7F\xC2\x9B"), kReplaced + "[2J" + kReplaced + kReplaced);
  EXPECT_EQ(TerminalText("\xE2\x80\xAE"
                         "x\xE2\x81\xA6\xD8\x9C"),
            kReplaced + "x" + kReplaced + kReplaced);
}

TEST(TerminalText, ReplacesBytesThatAreNoText) {
  EXPECT_EQ(TerminalText("\x9B"
                         "31m\xFF"),
            kReplaced + "31m" + kReplaced);
  EXPECT_EQ(TerminalText("\xED\xA0\x80"), kReplaced) << "half of a surrogate pair";
}

TEST(TerminalText, ObeysNoCharacterOfTheFirstTwoBlocksButThePrintableOnes) {
  for (char32_t code = 0; code < 0x100; ++code) {
    EXPECT_EQ(ControlsTerminal(code), code < 0x20 || (code >= 0x7F && code < 0xA0)) << static_cast<unsigned>(code);
  }
}

}  // namespace
}  // namespace parvex
