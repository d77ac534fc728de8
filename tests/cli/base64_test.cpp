#include <gtest/gtest.h>

#include "tests/cli/program.h"

namespace parvex::test {
namespace {

Outcome Base64(const std::string& verb, const std::string& input) {
  return RunParvex({"base64", verb}, {.input = input});
}

std::string AllBytes() {
  std::string bytes;
  for (int c = 0; c < 256; ++c) {
    bytes.push_back(static_cast<char>(c));
  }
  return bytes;
}

TEST(Base64, EncodeWritesTheTextAndOneLineFeed) {
  const Outcome outcome = Base64("encode", "ABC");
  EXPECT_EQ(outcome.status, 0);
  EXPECT_EQ(outcome.out, "QUJD\n");
  EXPECT_EQ(outcome.err, "");
  EXPECT_EQ(Base64("encode", "A").out, "QQ==\n");
}

TEST(Base64, EncodeWritesOneLineWhateverTheLength) {
  EXPECT_EQ(Base64("encode", std::string(3000000, 'x')).out.size(), 4000001u);
}

TEST(Base64, EncodeKeepsEveryByte) {
  const std::string text = Base64("encode", AllBytes()).out;
  EXPECT_EQ(AllBytes(), Base64("decode", text.substr(0, text.size() - 1)).out);
}

TEST(Base64, EmptyInputGivesEmptyOutput) {
  for (const char* verb : {"encode", "decode"}) {
    const Outcome outcome = Base64(verb, "");
    EXPECT_EQ(outcome.status, 0);
    EXPECT_EQ(outcome.out, "") << verb;
  }
}

TEST(Base64, DecodeWritesOnlyTheBytes) {
  EXPECT_EQ(Base64("decode", "QUJD").out, "ABC");
  EXPECT_EQ(Base64("decode", "AP8K").out, std::string("\0\xFF\n", 3));
}

TEST(Base64, DecodeReadsItsInputAsItStandsALineFeedAtTheEndIncluded) {
  EXPECT_EQ(Base64("decode", "QUJD\n").out, "ABC") << "a single character left over is ignored";
  EXPECT_EQ(Base64("decode", "QQ==\n").out, std::string("A\0", 2)) << "the line feed counts as a character of value 0";
  EXPECT_EQ(Base64("decode", "QU\r\nJD\r\n").out, "ABC");
}

TEST(Base64, DecodeTakesAnythingForBase64) {
  EXPECT_EQ(Base64("decode", AllBytes()).status, 0);
  EXPECT_EQ(Base64("decode", "!!!!").out, std::string(3, '\0'));
}

TEST(Base64, ReadsANamedFileOrStandardInputByItsDash) {
  CliMachine machine;
  const std::string file = machine.Write("b", "ABC");
  EXPECT_EQ(RunParvex({"base64", "encode", file}).out, "QUJD\n");
  EXPECT_EQ(RunParvex({"base64", "encode", "-"}, {.input = "ABC"}).out, "QUJD\n");
  EXPECT_EQ(RunParvex({"base64", "decode", machine.Write("t", "QUJD")}).out, "ABC");
}

TEST(Base64, OfAFileThatCannotBeReadIsWrongUsage) {
  CliMachine machine;
  for (const std::string& file : {machine.Path("missing"), machine.Folder()}) {
    for (const char* verb : {"encode", "decode"}) {
      const Outcome outcome = RunParvex({"base64", verb, file});
      EXPECT_EQ(outcome.status, 2);
      EXPECT_EQ(outcome.out, "");
      EXPECT_NE(outcome.err.find(file), std::string::npos) << outcome.err;
    }
  }
}

}  // namespace
}  // namespace parvex::test
