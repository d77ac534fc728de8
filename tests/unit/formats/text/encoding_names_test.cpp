#include "formats/text/encoding_names.h"

#include <gtest/gtest.h>

namespace parvex {
namespace {

TEST(CodePageNamed, KnowsTheNamesThatWindowsKnowsInAnyLetterCase) {
  EXPECT_EQ(CodePageNamed("utf-8"), 65001u);
  EXPECT_EQ(CodePageNamed("UTF-16"), 1200u);
  EXPECT_EQ(CodePageNamed("utf-16BE"), 1201u);
  EXPECT_EQ(CodePageNamed("us-ascii"), 20127u);
  EXPECT_EQ(CodePageNamed("latin1"), 28591u);
}

TEST(CodePageNamed, ReadsTheNumberInAName) {
  EXPECT_EQ(CodePageNamed("windows-1255"), 1255u);
  EXPECT_EQ(CodePageNamed("x-cp1251"), 1251u);
  EXPECT_EQ(CodePageNamed("cp437"), 437u);
  EXPECT_EQ(CodePageNamed("IBM852"), 852u);
  EXPECT_EQ(CodePageNamed("ISO-8859-5"), 28595u);
  EXPECT_EQ(CodePageNamed("iso8859-15"), 28605u);
  EXPECT_EQ(CodePageNamed("iso_8859-9"), 28599u);
}

TEST(CodePageNamed, MeansTheWiderCodePageOfWindowsWhereAStandardIsNarrower) {
  EXPECT_EQ(CodePageNamed("Shift_JIS"), 932u);
  EXPECT_EQ(CodePageNamed("gb2312"), 936u);
  EXPECT_EQ(CodePageNamed("euc-kr"), 949u);
  EXPECT_EQ(CodePageNamed("big5"), 950u);
}

TEST(CodePageNamed, KnowsNoOther) {
  for (const char* name : {"", "x-no-such", "windows-", "windows-1259", "windows-12520", "windows-99999999999",
                           "ISO-8859-12", "ISO-8859-", "cp65001 ", "cp-1252", "iso-8859-1:1987"}) {
    EXPECT_EQ(CodePageNamed(name), std::nullopt) << name;
  }
}

}  // namespace
}  // namespace parvex
