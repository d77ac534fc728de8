#include "legacy_env/file_routines.h"

#include <gtest/gtest.h>

#include "tests/support/fake_platform.h"

namespace parvex {
namespace {

constexpr const char* kInTemp = "C:\\Korvane\\TQ5-VX\\Temp\\blob.dat";
constexpr const char* kElsewhere = "C:\\Korvane\\TQ5-VX\\Projects\\blob.dat";

class FileRoutines : public testing::Test {
 protected:
  test::FakeMachine machine_;
  const Platform& platform_ = machine_.platform;
};

TEST_F(FileRoutines, FileExistsIsFalseForAnEmptyPathAMissingFileAndAFolder) {
  EXPECT_FALSE(FileExists(platform_, ""));
  EXPECT_FALSE(FileExists(platform_, kElsewhere));
  EXPECT_FALSE(FileExists(platform_, "C:\\NoSuchFolder\\x.txt"));
  EXPECT_FALSE(FileExists(platform_, "C:\\Korvane\\TQ5-VX\\Projects"));
}

TEST_F(FileRoutines, FileExistsIgnoresLetterCaseAndDoubledBackslashes) {
  machine_.Write(kElsewhere, "x");
  EXPECT_TRUE(FileExists(platform_, kElsewhere));
  EXPECT_TRUE(FileExists(platform_, "c:\\KORVANE\\tq5-vx\\\\projects\\BLOB.DAT"));
}

TEST_F(FileRoutines, FileExistsTakesWildcards) {
  machine_.Write(kElsewhere, "x");
  EXPECT_TRUE(FileExists(platform_, "C:\\Korvane\\TQ5-VX\\Projects\\*.dat"));
  EXPECT_TRUE(FileExists(platform_, "C:\\Korvane\\TQ5-VX\\Projects\\b?ob.dat"));
  EXPECT_FALSE(FileExists(platform_, "C:\\Korvane\\TQ5-VX\\Projects\\*.txt"));
}

TEST_F(FileRoutines, FileExistsIsTrueForAFolderWithFinalBackslashThatHoldsAFile) {
  EXPECT_FALSE(FileExists(platform_, "C:\\Korvane\\TQ5-VX\\Projects\\"));
  machine_.Write(kElsewhere, "x");
  EXPECT_TRUE(FileExists(platform_, "C:\\Korvane\\TQ5-VX\\Projects\\"));
  EXPECT_FALSE(FileExists(platform_, "C:\\Korvane\\TQ5-VX\\"));
}

TEST_F(FileRoutines, ReadFileBytesReadsTheWholeFile) {
  const std::string content("a\0b\xFF\r\n", 6);
  machine_.Write(kElsewhere, content);
  std::string bytes = "left over";
  ReadFileBytes(platform_, kElsewhere, bytes);
  EXPECT_EQ(content, bytes);
}

TEST_F(FileRoutines, ReadFileBytesLeavesTheBytesAsTheyAreWhenThereIsNothingToRead) {
  machine_.Write(kElsewhere, "");
  for (const char* path : {"", kElsewhere, kInTemp, "C:\\Korvane\\TQ5-VX\\Projects", "C:\\Korvane\\TQ5-VX\\Projects\\",
                           "C:\\Korvane\\TQ5-VX\\Projects\\*.dat"}) {
    std::string bytes = "left over";
    ReadFileBytes(platform_, path, bytes);
    EXPECT_EQ(bytes, "left over") << path;
  }
}

TEST_F(FileRoutines, EncodeFileBase64DeletesAFileUnderTemp) {
  machine_.Write(kInTemp, "ABC");
  EXPECT_EQ(EncodeFileBase64(platform_, kInTemp), "QUJD");
  EXPECT_FALSE(machine_.Exists(kInTemp));
}

TEST_F(FileRoutines, EncodeFileBase64KeepsAFileElsewhere) {
  machine_.Write(kElsewhere, "ABC");
  EXPECT_EQ(EncodeFileBase64(platform_, kElsewhere), "QUJD");
  EXPECT_TRUE(machine_.Exists(kElsewhere));
}

TEST_F(FileRoutines, EncodeFileBase64ComparesTempWithLetterCase) {
  machine_.Write(kInTemp, "ABC");
  EXPECT_EQ(EncodeFileBase64(platform_, "C:\\Korvane\\TQ5-VX\\TEMP\\blob.dat"), "QUJD");
  EXPECT_TRUE(machine_.Exists(kInTemp));
}

TEST_F(FileRoutines, EncodeFileBase64KeepsAFileInAFolderWhoseNameOnlyBeginsLikeThat) {
  for (const char* path :
       {"C:\\Projects\\Temple Clinic\\a.dat", "C:\\Temporary Papers\\a.dat", "C:\\A\\Temp.dat", "C:\\A\\Temp"}) {
    machine_.Write(path, "ABC");
    EXPECT_EQ(EncodeFileBase64(platform_, path), "QUJD");
    EXPECT_TRUE(machine_.Exists(path)) << path;
  }
}

TEST_F(FileRoutines, EncodeFileBase64DeletesAFileInAFolderOfTheFolderToo) {
  machine_.Write("C:\\Temp\\deep\\a.dat", "ABC");
  EXPECT_EQ(EncodeFileBase64(platform_, "C:\\Temp\\deep\\a.dat"), "QUJD");
  EXPECT_FALSE(machine_.Exists("C:\\Temp\\deep\\a.dat"));
}

TEST_F(FileRoutines, EncodeFileBase64OfAMissingOrEmptyFileIsEmpty) {
  EXPECT_EQ(EncodeFileBase64(platform_, ""), "");
  EXPECT_EQ(EncodeFileBase64(platform_, kInTemp), "");
  EXPECT_EQ(EncodeFileBase64(platform_, kElsewhere), "");
  machine_.Write(kInTemp, "");
  EXPECT_EQ(EncodeFileBase64(platform_, kInTemp), "");
  EXPECT_FALSE(machine_.Exists(kInTemp));
}

TEST(ResolveReportFile, LeavesANameWithABackslashAsItStands) {
  EXPECT_EQ(ResolveReportFile("D:\\x\\a.rtf", "C:\\R\\Reports"), "D:\\x\\a.rtf");
  EXPECT_EQ(ResolveReportFile("\\a.pdf", "C:\\R\\Reports"), "\\a.pdf");
}

TEST(ResolveReportFile, PutsGuideSpecificationsBesideTheFolder) {
  EXPECT_EQ(ResolveReportFile("a.rtf", "C:\\R\\Reports"), "C:\\R\\GSpec\\a.rtf");
  EXPECT_EQ(ResolveReportFile("a.rtf.bak", "C:\\R\\Reports"), "C:\\R\\GSpec\\a.rtf.bak");
  EXPECT_EQ(ResolveReportFile("a.rtf", "C:\\R\\Reports\\"), "C:\\R\\Reports\\GSpec\\a.rtf");
  EXPECT_EQ(ResolveReportFile("a.rtf", "Reports"), "GSpec\\a.rtf");
}

TEST(ResolveReportFile, PutsEverythingElseIntoTheFolder) {
  EXPECT_EQ(ResolveReportFile("a.pdf", "C:\\R\\Reports"), "C:\\R\\Reports\\a.pdf");
  EXPECT_EQ(ResolveReportFile("a.RTF", "C:\\R\\Reports"), "C:\\R\\Reports\\a.RTF");
  EXPECT_EQ(ResolveReportFile("a.pdf", "C:\\R\\Reports\\"), "C:\\R\\Reports\\\\a.pdf");
  EXPECT_EQ(ResolveReportFile("", "C:\\R\\Reports"), "C:\\R\\Reports\\");
}

}  // namespace
}  // namespace parvex
