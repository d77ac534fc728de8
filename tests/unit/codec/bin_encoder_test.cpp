#include "codec/bin_encoder.h"

#include <gtest/gtest.h>

#include "seams/automation_error.h"
#include "tests/support/fake_platform.h"

namespace parvex {
namespace {

class BinEncoder : public testing::Test {
 protected:
  test::FakeMachine machine_;
  cBinEncoder encoder_{*machine_.platform.codePage, *machine_.platform.files};

  // The error that a call ends with; a test fails when there is none.
  template <typename Call>
  AutomationError ErrorOf(Call call) {
    try {
      call();
    } catch (const AutomationError& error) {
      return error;
    }
    ADD_FAILURE() << "no error";
    return AutomationError(0, "", "");
  }
};

TEST_F(BinEncoder, EncodesTheBytesOfATextInTheAnsiCodePage) {
  EXPECT_EQ(encoder_.Encode("Man"), "TWFu");
  EXPECT_EQ(encoder_.Encode("\xC3\xA4"), "5A==");      // one byte, E4
  EXPECT_EQ(encoder_.Encode("\xE2\x82\xAC"), "gA==");  // the euro sign, 80
  EXPECT_EQ(encoder_.Encode("\xE4\xB9\xA1"), "Pw==");  // "?" for what the code page lacks
}

TEST_F(BinEncoder, DecodesToTheAnsiCodePagesText) {
  EXPECT_EQ(encoder_.Decode("TWFu"), "Man");
  EXPECT_EQ(encoder_.Decode("5IA="), "\xC3\xA4\xE2\x82\xAC");
}

TEST_F(BinEncoder, BringsEveryByteBackThroughAText) {
  std::string bytes;
  for (int byte = 0; byte < 256; ++byte) {
    bytes.push_back(static_cast<char>(byte));
  }
  const std::string base64 = encoder_.EncodeArr(bytes);
  EXPECT_EQ(encoder_.Encode(encoder_.Decode(base64)), base64);
}

TEST_F(BinEncoder, GivesAnEmptyTextForAnEmptyOne) {
  EXPECT_EQ(encoder_.Decode(""), "");
  EXPECT_EQ(encoder_.Encode(""), "");
}

TEST_F(BinEncoder, GivesNoBytesForLineBreaksAndPaddingOnly) {
  EXPECT_EQ(encoder_.DecodeArr("\r\n==\r\n"), "");
  EXPECT_EQ(encoder_.Decode("=\r\n"), "");
}

TEST_F(BinEncoder, EncodesThreeThousandBytesOnOneLine) {
  const std::string text = encoder_.Encode(std::string(3000, 'x'));
  EXPECT_EQ(text.size(), 4000u);
  EXPECT_EQ(text.find_first_of("\r\n"), std::string::npos);
}

TEST_F(BinEncoder, KeepsNulBytes) {
  const std::string bytes("a\0b\0", 4);
  EXPECT_EQ(encoder_.EncodeArr(bytes), "YQBiAA==");
  EXPECT_EQ(encoder_.DecodeArr("YQBiAA=="), bytes);
}

TEST_F(BinEncoder, WritesTheDecodedBytesToANewFile) {
  encoder_.DecodeToFile("TWFu\r\nTWE=", "C:\\new.tmp");
  EXPECT_EQ(machine_.Read("C:\\new.tmp"), "ManMa");
}

TEST_F(BinEncoder, MakesAnEmptyFileOfATextWithoutBytes) {
  encoder_.DecodeToFile("", "C:\\new.tmp");
  EXPECT_TRUE(machine_.Exists("C:\\new.tmp"));
  EXPECT_EQ(machine_.Read("C:\\new.tmp"), "");
}

TEST_F(BinEncoder, RefusesToDecodeToAnExistingFileAndLeavesItAsItIs) {
  encoder_.DecodeToFile("TWFu", "C:\\new.tmp");
  const AutomationError error = ErrorOf([&] { encoder_.DecodeToFile("TWE=", "C:\\NEW.tmp"); });
  EXPECT_EQ(error.Number(), 0x800403E8u);
  EXPECT_EQ(error.Source(), "Base64.DecodeToFile");
  EXPECT_EQ(error.Description(), "File already exists.");
  EXPECT_EQ(machine_.Read("C:\\new.tmp"), "Man");
}

TEST_F(BinEncoder, KeepsTheErrorOfAFileThatCannotBeMade) {
  const AutomationError error = ErrorOf([&] { encoder_.DecodeToFile("TWFu", "C:\\missing\\new.tmp"); });
  EXPECT_EQ(error.RuntimeNumber(), static_cast<std::uint16_t>(RuntimeError::PathNotFound));
  EXPECT_NE(error.Description().find("new.tmp"), std::string::npos);
  EXPECT_FALSE(machine_.Exists("C:\\missing\\new.tmp"));
}

TEST_F(BinEncoder, DoesNotCallAFolderOfThatNameAnExistingFile) {
  machine_.platform.files->CreateFolder("C:\\taken");
  const AutomationError error = ErrorOf([&] { encoder_.DecodeToFile("TWFu", "C:\\taken"); });
  EXPECT_NE(error.Number(), 0x800403E8u);
}

TEST_F(BinEncoder, EncodesAWholeFile) {
  machine_.Write("C:\\selection.bin", std::string("M\0n", 3));
  EXPECT_EQ(encoder_.EncodeFromFile("C:\\selection.bin"), "TQBu");
}

TEST_F(BinEncoder, CallsAMissingFileNotFound) {
  const AutomationError error = ErrorOf([&] { encoder_.EncodeFromFile("C:\\missing.bin"); });
  EXPECT_EQ(error.RuntimeNumber(), static_cast<std::uint16_t>(RuntimeError::FileNotFound));
}

TEST_F(BinEncoder, FailsOnAnEmptyFileToEncode) {
  machine_.Write("C:\\empty.bin", "");
  const AutomationError error = ErrorOf([&] { encoder_.EncodeFromFile("C:\\empty.bin"); });
  EXPECT_EQ(error.RuntimeNumber(), static_cast<std::uint16_t>(RuntimeError::SubscriptOutOfRange));
  EXPECT_NE(error.Description().find("C:\\empty.bin"), std::string::npos);
}

}  // namespace
}  // namespace parvex
