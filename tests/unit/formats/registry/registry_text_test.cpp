#include "formats/registry/registry_text.h"

#include <gtest/gtest.h>

#include "formats/text/windows_1252.h"
#include "tests/support/registry_export.h"

namespace parvex {
namespace {

using posix::Windows1252;
using test::kHeader4;
using test::kHeader5;
using test::Utf16LittleEndian;

class RegistryTextTest : public testing::Test {
 protected:
  Windows1252 codePage;

  std::optional<std::string> Value(std::string_view bytes, std::string_view name,
                                   std::string_view key = "HKEY_LOCAL_MACHINE\\K") {
    return RegistryText(bytes, codePage).Value(key, name);
  }
  // The value "v" that this line after the header sets.
  std::optional<std::string> V(const std::string& lines) { return Value(kHeader4 + lines, "v"); }
};

TEST_F(RegistryTextTest, ReadsTheEditorsExportInUtf16) {
  const std::string text =
      "Windows Registry Editor Version 5.00\r\n\r\n[HKEY_LOCAL_MACHINE\\SOFTWARE\\Korvane\\KDQ47]\r\n"
      "\"BinPath\"=\"C:\\\\Größe 日本\\\\Bin\\\\\"\r\n\r\n";
  EXPECT_EQ(Value(Utf16LittleEndian(text), "BinPath", "HKEY_LOCAL_MACHINE\\SOFTWARE\\Korvane\\KDQ47"),
            "C:\\Größe 日本\\Bin\\");
}

TEST_F(RegistryTextTest, ReadsTheOldFormatInTheCodePage) {
  EXPECT_EQ(V("\"v\"=\"C:\\\\Gr\xF6\xDF"
              "e\"\r\n"),
            "C:\\Größe");
}

TEST_F(RegistryTextTest, ReadsUtf8WithAByteOrderMark) {
  EXPECT_EQ(Value(kHeader5 + "\"v\"=\"Größe\"\n", "v"), "Größe");
}

TEST_F(RegistryTextTest, LineEndsAndTheLastLineBreakDoNotMatter) {
  EXPECT_EQ(Value("REGEDIT4\n[HKEY_LOCAL_MACHINE\\K]\n\"v\"=\"x\"", "v"), "x");
}

struct KeyRow {
  const char* key;
  const char* reason;
};

TEST_F(RegistryTextTest, KeysAreTheSameInEverySpelling) {
  static constexpr KeyRow kRows[] = {
      {"HKEY_LOCAL_MACHINE\\SOFTWARE\\Korvane", "as written"},
      {"HKLM\\SOFTWARE\\Korvane", "the short hive"},
      {"hklm\\software\\KORVANE", "letter case"},
      {"HKLM\\SOFTWARE\\Korvane\\", "a final backslash"},
      {"HKLM\\\\SOFTWARE\\\\Korvane", "doubled backslashes"},
  };
  for (const KeyRow& written : kRows) {
    const std::string text = "REGEDIT4\n[" + std::string(written.key) + "]\n\"v\"=\"x\"\n";
    for (const KeyRow& asked : kRows) {
      EXPECT_EQ(Value(text, "V", asked.key), "x") << written.reason << " / " << asked.reason;
    }
  }
}

TEST_F(RegistryTextTest, AKeyMayHoldABracket) {
  EXPECT_EQ(Value("REGEDIT4\n[HKLM\\a]b]\n\"v\"=\"x\"\n", "v", "HKLM\\a]b"), "x");
}

TEST_F(RegistryTextTest, EscapesStandForBackslashAndQuote) {
  EXPECT_EQ(V(R"("v"="a\\b\"c\"")"), "a\\b\"c\"");
  EXPECT_EQ(Value(kHeader4 + R"("a\\b\"c"="x")", "A\\B\"C"), "x");
}

TEST_F(RegistryTextTest, AnEmptyTextIsAValue) { EXPECT_EQ(V("\"v\"=\"\""), ""); }

TEST_F(RegistryTextTest, TheDefaultValueHasTheEmptyName) { EXPECT_EQ(Value(kHeader4 + "@=\"x\"\r\n", ""), "x"); }

TEST_F(RegistryTextTest, BlanksAndCommentsAroundAValueDoNotMatter) {
  EXPECT_EQ(V("  \"v\" = \"x ;\" ; comment\r\n"), "x ;");
  EXPECT_EQ(V("; \"v\"=\"no\"\r\n\"v\"=\"x\"\r\n;\"v\"=\"no\"\r\n"), "x");
}

TEST_F(RegistryTextTest, LaterDuplicatesWin) {
  EXPECT_EQ(V("\"v\"=\"1\"\r\n\"V\"=\"2\"\r\n"), "2");
  EXPECT_EQ(V("\"v\"=\"1\"\r\n[HKLM\\J]\r\n\"v\"=\"no\"\r\n[hklm\\k]\r\n\"w\"=\"\"\r\n\"v\"=\"3\"\r\n"), "3");
}

TEST_F(RegistryTextTest, DeletionsAreCarriedOut) {
  EXPECT_EQ(V("\"v\"=\"1\"\r\n\"V\"=-\r\n"), std::nullopt);
  EXPECT_EQ(V("\"v\"=\"1\"\r\n[-HKLM\\k]\r\n"), std::nullopt);
  EXPECT_EQ(V("\"v\"=\"1\"\r\n[-HKLM\\k]\r\n\"v\"=\"no key\"\r\n"), std::nullopt);
  EXPECT_EQ(V("\"v\"=\"1\"\r\n[-HKLM\\k]\r\n[HKLM\\k]\r\n\"v\"=\"2\"\r\n"), "2");
}

TEST_F(RegistryTextTest, ADeletedKeyTakesThoseBelowButNotThoseBeside) {
  const std::string text =
      "REGEDIT4\n[HKLM\\K\\Below]\n\"v\"=\"1\"\n[HKLM\\K2]\n\"v\"=\"2\"\n[HKLM\\K]\n\"v\"=\"3\"\n"
      "[HKLM\\K+]\n\"v\"=\"4\"\n"
      "[-HKLM\\K]\n";
  EXPECT_EQ(Value(text, "v", "HKLM\\K"), std::nullopt);
  EXPECT_EQ(Value(text, "v", "HKLM\\K\\Below"), std::nullopt);
  EXPECT_EQ(Value(text, "v", "HKLM\\K2"), "2");
  EXPECT_EQ(Value(text, "v", "HKLM\\K+"), "4");
}

TEST_F(RegistryTextTest, HexadecimalStringsAreUtf16InTheNewFormat) {
  EXPECT_EQ(Value(kHeader5 + "\"v\"=hex(2):25,00,f6,00,e5,65,00,00\r\n", "v"), "%ö日");
  EXPECT_EQ(Value(kHeader5 + "\"v\"=hex(1):41,00\r\n", "v"), "A");
  EXPECT_EQ(Value(kHeader5 + "\"v\"=HEX(1):41,00,00,00\r\n", "v"), "A");
  EXPECT_EQ(Value(kHeader5 + "\"v\"=hex(2):\r\n", "v"), "");
}

TEST_F(RegistryTextTest, HexadecimalStringsAreAnsiInTheOldFormat) { EXPECT_EQ(V("\"v\"=hex(2):25,F6,00\r\n"), "%ö"); }

TEST_F(RegistryTextTest, HexadecimalBytesGoOnInTheNextLine) {
  EXPECT_EQ(V("\"v\"=hex(2):41,42,\\\r\n  43,\\\r\n  44,00\r\n\"w\"=\"\"\r\n"), "ABCD");
  EXPECT_EQ(V("\"v\"=hex(2):41,\\"), "A");
}

struct LineRow {
  const char* line;
  const char* reason;
};

TEST_F(RegistryTextTest, WhatIsNoStringIsSkipped) {
  static constexpr LineRow kRows[] = {
      {"\"v\"=dword:00000001", "a number"},
      {"\"v\"=hex:41,00", "bytes"},
      {"\"v\"=hex(7):41,00,00", "a list of texts"},
      {"\"v\"=hex(2):4x,00", "no hexadecimal digits"},
      {"\"v\"=hex(2):141,00", "more than a byte"},
      {"\"v\"=hex(2):41,,42", "an empty byte"},
      {"\"v\"=hex(2)", "no bytes"},
      {"\"v\"=\"open", "an open quote"},
      {"\"v\"=\"open\\\"", "an open quote after an escape"},
      {"\"v\"=\"x\" y", "text behind the value"},
      {"\"v\"", "no value"},
      {"\"v\"=", "no value"},
      {"\"v", "an open name"},
      {"v=\"x\"", "a name without quotes"},
      {"\"v\"\"x\"", "no sign between"},
      {"[HKLM\\K", "an open key"},
      {"[]", "an empty key"},
      {"[", "a bracket"},
      {"\\", "a backslash"},
  };
  for (const LineRow& row : kRows) {
    EXPECT_EQ(V(std::string(row.line) + "\r\n"), std::nullopt) << row.reason;
    EXPECT_EQ(V(std::string(row.line) + "\r\n[HKLM\\K]\r\n\"v\"=\"x\"\r\n"), "x") << "after " << row.reason;
  }
}

TEST_F(RegistryTextTest, ValuesBeforeTheFirstKeyAreSkipped) {
  EXPECT_EQ(Value("REGEDIT4\n\"v\"=\"x\"\n", "v", ""), std::nullopt);
}

TEST_F(RegistryTextTest, NoTextHasNoValues) {
  const std::string zeros(9, '\0');
  for (const std::string_view bytes :
       {std::string_view(), std::string_view("\xFF\xFE"), std::string_view("\xFF\xFE\x41"), std::string_view(zeros)}) {
    EXPECT_EQ(Value(bytes, "v"), std::nullopt);
  }
}

TEST_F(RegistryTextTest, ACutExportGivesWhatCameBeforeTheCut) {
  const std::string whole = kHeader4 + "\"v\"=\"x\"\r\n\"w\"=hex(2):41,42,\\\r\n  43,00\r\n";
  for (std::size_t size = 0; size < whole.size(); ++size) {
    const bool complete = size >= kHeader4.size() + 7;
    EXPECT_EQ(Value(whole.substr(0, size), "v"), complete ? std::optional<std::string>("x") : std::nullopt) << size;
  }
}

}  // namespace
}  // namespace parvex
