#include "adapters/posix/file_version.h"

#include <fcntl.h>
#include <gtest/gtest.h>
#include <sys/stat.h>

#include "adapters/posix/host_file.h"
#include "tests/support/fake_platform.h"

namespace parvex::posix {
namespace {

class FileVersionTest : public testing::Test {
 protected:
  test::TemporaryFolder folder;
  const std::filesystem::path file = folder.Path() / "file";
};

TEST_F(FileVersionTest, EachReplacementIsAnotherVersion) {
  EXPECT_EQ(VersionOf(file), std::nullopt);
  WriteHostFile(file, "1", IfPresent::Replace, "C:\\file");
  const std::optional<FileVersion> first = VersionOf(file);
  EXPECT_EQ(VersionOf(file), first);
  WriteHostFile(file, "2", IfPresent::Replace, "C:\\file");
  EXPECT_NE(VersionOf(file), first);
}

TEST_F(FileVersionTest, AFolderIsNoFileButHasAVersionAllTheSame) {
  EXPECT_EQ(VersionOf(folder.Path()), std::nullopt);
  struct stat status;
  ASSERT_EQ(stat(folder.Path().c_str(), &status), 0);
  const FileVersion version = VersionIn(status);
  EXPECT_EQ(VersionIn(status), version);
  EXPECT_EQ(version.inode, status.st_ino);
  EXPECT_EQ(version.modifiedNanoseconds / 1'000'000'000, status.st_mtim.tv_sec);
  EXPECT_EQ(version.modifiedNanoseconds % 1'000'000'000, status.st_mtim.tv_nsec);
}

TEST_F(FileVersionTest, IsSettledOneStepOfTheClockBehindItsLastChange) {
  FileVersion version;
  version.changedNanoseconds = 7'000'000'000;
  EXPECT_FALSE(IsSettled(version, version.changedNanoseconds));
  EXPECT_FALSE(IsSettled(version, version.changedNanoseconds + kLongestClockStep));
  EXPECT_TRUE(IsSettled(version, version.changedNanoseconds + kLongestClockStep + 1));
  EXPECT_FALSE(IsSettled(version, version.changedNanoseconds - 1)) << "a clock that was put back";
}

TEST_F(FileVersionTest, TheTimeThatAProgramMaySetDoesNotSettleAFile) {
  WriteHostFile(file, "1", IfPresent::Replace, "C:\\file");
  const timespec longAgo[] = {{1'000'000'000, 0}, {1'000'000'000, 0}};
  ASSERT_EQ(utimensat(AT_FDCWD, file.c_str(), longAgo, 0), 0);
  const FileVersion version = *VersionOf(file);
  EXPECT_EQ(version.modifiedNanoseconds, 1'000'000'000'000'000'000);
  EXPECT_FALSE(IsSettled(version, version.changedNanoseconds));
}

TEST_F(FileVersionTest, TheTimeOfTheSystemIsTheOneThatFilesAreStampedWith) {
  const std::int64_t before = NowInNanoseconds();
  WriteHostFile(file, "1", IfPresent::Replace, "C:\\file");
  const std::int64_t changed = VersionOf(file)->changedNanoseconds;
  EXPECT_GT(changed, before - kLongestClockStep);
  EXPECT_LE(changed, NowInNanoseconds());
}

}  // namespace
}  // namespace parvex::posix
