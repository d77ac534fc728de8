#include "recording/case_layout.h"

#include <gtest/gtest.h>

#include "recording/hand_over_folders.h"

namespace parvex::recording {
namespace {

TEST(CaseName, KeepsWhatAFileNameMayHold) {
  EXPECT_EQ(CaseName("20261122-101500", 7, 2, "getTags"), "20261122-101500-7-2-getTags");
  EXPECT_EQ(CaseName("20261122-101500", 7, 2, "..\\a/b:c\xC3\xA9"), "20261122-101500-7-2-abc");
  EXPECT_EQ(CaseName("20261122-101500", 7, 2, ""), "20261122-101500-7-2-unknown");
  EXPECT_EQ(CaseName("t", 7, 2, std::string(100, 'a')), "t-7-2-" + std::string(40, 'a'));
}

TEST(MemberOf, IsThePlaceInAMachineFolder) {
  EXPECT_EQ(MemberOf("C:\\Korvane\\a.ini"), "drive_c/Korvane/a.ini");
  EXPECT_EQ(MemberOf("d:/x//y\\"), "drive_d/x/y");
  EXPECT_EQ(MemberOf("win.ini"), "drive_c/win.ini");
  EXPECT_EQ(MemberOf("\\\\server\\share\\a"), "unc/server/share/a");
  EXPECT_EQ(MemberOf("C:\\a\\..\\..\\..\\b. \\.\\c"), "drive_c/b/c");
}

TEST(MemberOf, IsNoneWhereNoFileCanHaveTheName) {
  EXPECT_FALSE(MemberOf("C:\\a?b"));
  EXPECT_FALSE(MemberOf("C:\\nul"));
  EXPECT_FALSE(MemberOf("C:\\a:stream"));
}

TEST(HandOverFolders, AreTheOneBesideTheProgramFolderAndTheDesignApplications) {
  EXPECT_EQ(HandOverFolders("C:\\Korvane\\TQ5-VX\\Bin\\"), std::vector<std::string>{"C:\\Korvane\\TQ5-VX\\Temp"});
  EXPECT_EQ(HandOverFolders("C:\\K\\TQ5-VX\\Deep\\Bin"),
            (std::vector<std::string>{"C:\\K\\TQ5-VX\\Deep\\Temp", "C:\\K\\TQ5-VX\\Temp"}));
  EXPECT_TRUE(HandOverFolders("Bin").empty());
}

}  // namespace
}  // namespace parvex::recording
