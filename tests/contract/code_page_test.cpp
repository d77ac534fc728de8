#include "seams/code_page.h"

#include <gtest/gtest.h>

#include "tests/contract/contract_fixture.h"

namespace parvex::test {
namespace {

// Machines with another ANSI code page than Windows-1252 are not what these tests are about.
class CodePageContract : public testing::Test {
 protected:
  ContractMachine machine;
  CodePage& codePage = machine.codePage;
};

TEST_F(CodePageContract, EveryByteTravelsThereAndBack) {
  for (int byte = 0; byte < 256; ++byte) {
    const std::string bytes(1, static_cast<char>(byte));
    EXPECT_EQ(codePage.ToAnsi(codePage.FromAnsi(bytes)), bytes) << byte;
  }
}

TEST_F(CodePageContract, BytesMeanTheirCharacters) {
  EXPECT_EQ(codePage.FromAnsi("plain text \x01\x7F"), "plain text \x01\x7F");
  EXPECT_EQ(codePage.FromAnsi("\xC4\xF6\xDF \xB0 \x80 \x96 \x99"), "Äöß ° € – ™");
}

TEST_F(CodePageContract, CharactersBecomeTheirBytes) {
  EXPECT_EQ(codePage.ToAnsi("Äöß ° € – ™ \xC2\xA0"), "\xC4\xF6\xDF \xB0 \x80 \x96 \x99 \xA0");
}

TEST_F(CodePageContract, BytesWithoutCharacterAreControlCharacters) {
  EXPECT_EQ(codePage.FromAnsi("\x81\x8D\x8F\x90\x9D"), "\u0081\u008D\u008F\u0090\u009D");
}

TEST_F(CodePageContract, ACharacterBeyondTheCodePageBecomesAQuestionMark) { EXPECT_EQ(codePage.ToAnsi("a日b"), "a?b"); }

TEST_F(CodePageContract, ASurrogatePairBecomesTwoQuestionMarks) { EXPECT_EQ(codePage.ToAnsi("a\U0001F600b"), "a??b"); }

TEST_F(CodePageContract, KeepsZeroBytes) {
  const std::string zero("a\0b", 3);
  EXPECT_EQ(codePage.ToAnsi(zero), zero);
  EXPECT_EQ(codePage.FromAnsi(zero), zero);
  EXPECT_EQ(codePage.FromAnsi(""), "");
}

}  // namespace
}  // namespace parvex::test
