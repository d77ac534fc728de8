#include "adapters/posix/host_file.h"

#include <gtest/gtest.h>

#include "tests/support/fake_platform.h"
#include "tests/support/raised_by.h"

namespace parvex::posix {
namespace {

class HostFileTest : public testing::Test {
 protected:
  test::TemporaryFolder folder;
  const std::filesystem::path file = folder.Path() / "file";
};

// Such a file says that it is empty, as a file does that grows after it was looked at.
TEST_F(HostFileTest, AFileThatHoldsMoreThanItSaysIsReadToItsEnd) {
  const std::string maps = ReadHostFile("/proc/self/maps", "C:\\maps");
  EXPECT_EQ(std::filesystem::file_size("/proc/self/maps"), 0u);
  EXPECT_GT(maps.size(), 1000u);
  EXPECT_EQ(maps.back(), '\n');
}

TEST_F(HostFileTest, AFileThatNobodyMayWriteIsNotReplacedEvenByRoot) {
  test::WriteHostFile(file, "old");
  std::filesystem::permissions(file, std::filesystem::perms(0444));
  EXPECT_EQ(test::RaisedBy([&] { WriteHostFile(file, "new", IfPresent::Replace, "C:\\file"); }), 75);
  EXPECT_EQ(test::RaisedBy([&] { RemoveHostFile(file, "C:\\file"); }), 75);
  EXPECT_EQ(test::ReadHostFile(file), "old");
}

TEST_F(HostFileTest, AFolderThatIsAFileIsPathNotFound) {
  test::WriteHostFile(file, "");
  EXPECT_EQ(test::RaisedBy([&] { WriteHostFile(file / "a", "", IfPresent::Replace, "C:\\file\\a"); }), 76);
}

TEST_F(HostFileTest, ANameThatIsTooLongIsAnAccessError) {
  const std::filesystem::path tooLong = folder.Path() / std::string(300, 'x');
  EXPECT_EQ(test::RaisedBy([&] { WriteHostFile(tooLong, "", IfPresent::Replace, "C:\\x"); }), 75);
  EXPECT_TRUE(std::filesystem::is_empty(folder.Path()));
}

}  // namespace
}  // namespace parvex::posix
