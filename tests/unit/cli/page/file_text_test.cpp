#include "cli/page/file_text.h"

#include <gtest/gtest.h>

namespace parvex::cli {
namespace {

TEST(FileText, IsUtf8OrWhatAMarkTellsOrElseAnsi) {
  EXPECT_EQ(TextOfFile("K\xC3\xBC"
                       "che\r\n\t"),
            "K\u00FCche\r\n\t");
  EXPECT_EQ(TextOfFile("K\xFC"
                       "che"),
            "K\u00FCche");
  EXPECT_EQ(TextOfFile(std::string("\xFF\xFE"
                                   "a\0",
                                   4)),
            "a");
  EXPECT_EQ(TextOfFile("\xEF\xBB\xBF\xFF"), "\uFFFD") << "where the mark lies";
  EXPECT_EQ(TextOfFile(""), "");
}

TEST(FileText, OfBytesThatNoTextHasIsNothing) {
  EXPECT_EQ(TextOfFile(std::string("a\0b", 3)), std::nullopt);
  EXPECT_EQ(TextOfFile("\x1B[2J"), std::nullopt);
}

}  // namespace
}  // namespace parvex::cli
