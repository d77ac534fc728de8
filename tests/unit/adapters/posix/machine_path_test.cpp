#include "adapters/posix/machine_path.h"

#include <gtest/gtest.h>

namespace parvex::posix {
namespace {

std::string TextOf(std::string_view path) {
  const std::optional<MachinePath> parsed = MachinePath::Parse(path);
  return parsed ? parsed->Text() : "none";
}

TEST(MachinePath, BeginsAtADrivesRoot) {
  EXPECT_EQ(TextOf("C:\\a\\b"), "C:\\a\\b");
  EXPECT_EQ(TextOf("d:/a"), "D:\\a");
  EXPECT_EQ(TextOf("\\a"), "C:\\a");
  EXPECT_EQ(TextOf("a\\b"), "C:\\a\\b");
  EXPECT_EQ(TextOf("D:a"), "D:\\a");
  EXPECT_EQ(TextOf("C:"), "C:\\");
  EXPECT_EQ(TextOf("C:\\"), "C:\\");
}

TEST(MachinePath, SeparatorsInARowCountAsOne) { EXPECT_EQ(TextOf("C:\\\\a\\/\\b\\\\"), "C:\\a\\b"); }

TEST(MachinePath, DotsAreResolvedAndStayOnTheDrive) {
  EXPECT_EQ(TextOf("C:\\a\\.\\b\\..\\c"), "C:\\a\\c");
  EXPECT_EQ(TextOf("C:\\..\\..\\a"), "C:\\a");
  EXPECT_EQ(TextOf("..\\a"), "C:\\a");
}

TEST(MachinePath, DropsDotsAndBlanksAtTheEndOfEachName) {
  EXPECT_EQ(TextOf("C:\\a. \\b ..\\c"), "C:\\a\\b\\c");
  EXPECT_EQ(TextOf("C:\\ a"), "C:\\ a");
}

TEST(MachinePath, KnowsThatAFinalSeparatorMeansAFolder) {
  EXPECT_TRUE(MachinePath::Parse("C:\\a\\")->endsInSeparator);
  EXPECT_TRUE(MachinePath::Parse("C:/a/")->endsInSeparator);
  EXPECT_FALSE(MachinePath::Parse("C:\\a")->endsInSeparator);
}

TEST(MachinePath, TheParentOfARootIsTheRoot) {
  EXPECT_EQ(MachinePath::Parse("C:\\a\\b")->Parent().Text(), "C:\\a");
  EXPECT_EQ(MachinePath::Parse("C:\\")->Parent().Text(), "C:\\");
}

TEST(MachinePath, Has250NamesAtMost) {
  std::string path = "C:";
  for (int name = 0; name < 250; ++name) {
    path += "\\a";
  }
  EXPECT_EQ(TextOf(path), path);
  EXPECT_EQ(TextOf(path + "\\a"), "none");
  EXPECT_EQ(TextOf(path + "\\a\\..\\.."), "none") << "though less is left of it";
  EXPECT_EQ(TextOf(path + "\\..\\a\\."), path);
}

struct PathRow {
  std::string_view path;
  const char* reason;
};

TEST(MachinePath, RefusesWhatNoFileCanBeCalled) {
  static constexpr PathRow kRows[] = {
      {"", "empty"},
      {"\\\\server\\share\\a", "a network path"},
      {"//server/share/a", "a network path"},
      {"\\\\?\\C:\\a", "a device path"},
      {"\\\\.\\C:", "a device path"},
      {"C:\\a:stream", "a second colon"},
      {"ab:\\c", "a drive of two letters"},
      {"1:\\c", "a drive that is no letter"},
      {"C:\\a*", "a wildcard"},
      {"C:\\a?\\b", "a wildcard"},
      {"C:\\<a", "a redirection sign"},
      {"C:\\a>", "a redirection sign"},
      {"C:\\\"a\"", "a quote"},
      {"C:\\a|b", "a pipe sign"},
      {"C:\\a\tb", "a control character"},
      {std::string_view("C:\\a\0b", 6), "a zero byte"},
      {"C:\\...", "dots only"},
      {"C:\\a\\ \\b", "a blank only"},
      {"NUL", "a device"},
      {"C:\\a\\nul.txt", "a device with an extension"},
      {"C:\\con \\a", "a device with a blank"},
      {"C:\\Aux.", "a device with a dot"},
      {"C:\\com1", "a device with a number"},
      {"C:\\LPT9.dat", "a device with a number"},
  };
  for (const PathRow& row : kRows) {
    EXPECT_EQ(TextOf(row.path), "none") << row.reason << ": " << row.path;
  }
}

TEST(MachinePath, NamesThatOnlyResembleDevicesAreNames) {
  for (const char* path : {"C:\\NULL", "C:\\console", "C:\\com", "C:\\com10", "C:\\COM0", "C:\\lpt", "C:\\a.nul"}) {
    EXPECT_EQ(TextOf(path), path);
  }
}

}  // namespace
}  // namespace parvex::posix
