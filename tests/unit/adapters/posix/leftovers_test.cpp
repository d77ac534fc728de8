#include "adapters/posix/leftovers.h"

#include <fcntl.h>
#include <gtest/gtest.h>
#include <sys/file.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

#include <chrono>

#include "adapters/posix/host_file.h"
#include "adapters/posix/new_file.h"
#include "tests/support/fake_platform.h"

namespace parvex::posix {
namespace {

class LeftoversTest : public testing::Test {
 protected:
  // A file of that age.
  std::filesystem::path Leave(const std::string& name, std::chrono::hours age) const {
    const std::filesystem::path path = folder.Path() / name;
    test::WriteHostFile(path, "left");
    std::filesystem::last_write_time(path, std::filesystem::file_time_type::clock::now() - age);
    return path;
  }
  bool IsThere(const std::string& name) const { return std::filesystem::exists(folder.Path() / name); }
  void WriteInto(const std::filesystem::path& where) const {
    WriteHostFile(where / "file", "new", IfPresent::Replace, "C:\\file");
  }

  test::TemporaryFolder folder;
};

TEST_F(LeftoversTest, OlderThanADayGoWithTheNextWriteAndOthersStay) {
  Leave("~parvex-0123456789abcdef.tmp", std::chrono::hours(25));
  Leave("~parvex-123-4.tmp", std::chrono::hours(25));
  Leave("~parvex-fedcba9876543210.tmp", std::chrono::hours(23));
  Leave("~parvex-lock.tmp", std::chrono::hours(25));
  Leave("~parvex-mine.tmp", std::chrono::hours(25));
  Leave("quote.tmp", std::chrono::hours(2500));
  std::filesystem::create_directory(folder.Path() / "~parvex-01.tmp");
  std::filesystem::create_symlink("quote.tmp", folder.Path() / "~parvex-02.tmp");
  WriteInto(folder.Path());
  EXPECT_FALSE(IsThere("~parvex-0123456789abcdef.tmp"));
  EXPECT_FALSE(IsThere("~parvex-123-4.tmp"));
  for (const char* kept : {"~parvex-fedcba9876543210.tmp", "~parvex-lock.tmp", "~parvex-mine.tmp", "quote.tmp",
                           "~parvex-01.tmp", "~parvex-02.tmp", "file"}) {
    EXPECT_TRUE(IsThere(kept)) << kept;
  }
}

TEST_F(LeftoversTest, ThatAreStillWrittenStay) {
  const std::filesystem::path held = Leave("~parvex-0123456789abcdef.tmp", std::chrono::hours(48));
  const int file = open(held.c_str(), O_RDONLY | O_CLOEXEC);
  ASSERT_EQ(flock(file, LOCK_EX | LOCK_NB), 0);
  WriteInto(folder.Path());
  EXPECT_TRUE(IsThere("~parvex-0123456789abcdef.tmp"));
  close(file);
}

TEST_F(LeftoversTest, AreLookedForOnceInAFolder) {
  WriteInto(folder.Path());
  Leave("~parvex-0123456789abcdef.tmp", std::chrono::hours(48));
  WriteInto(folder.Path());
  EXPECT_TRUE(IsThere("~parvex-0123456789abcdef.tmp"));
}

TEST_F(LeftoversTest, ThatAreGoneAreNoFilesOfTheMachine) {
  test::FakeMachine machine;
  const std::filesystem::path quotes = machine.folder.Path() / "drive_c" / "Quotes";
  std::filesystem::create_directory(quotes);
  std::filesystem::rename(Leave("~parvex-0123456789abcdef.tmp", std::chrono::hours(48)),
                          quotes / "~parvex-0123456789abcdef.tmp");
  ASSERT_TRUE(machine.platform.files->IsFile("C:\\QUOTES\\~Parvex-0123456789ABCDEF.tmp"));
  machine.platform.files->Replace("C:\\Quotes\\QUOTE.xml", "quote");
  EXPECT_FALSE(machine.platform.files->IsFile("C:\\QUOTES\\~Parvex-0123456789ABCDEF.tmp"));
  EXPECT_EQ(machine.platform.files->ListFiles("C:\\Quotes\\*"), std::vector<std::string>{"QUOTE.xml"});
}

// Both halves of a fork think of the same names.
TEST_F(LeftoversTest, OfAnotherProcessWithTheSameNamesDoNotMakeAWriteFail) {
  const pid_t child = fork();
  if (child == 0) {
    NewFile left(folder.Path() / "file");
    _exit(left.Make(nullptr));
  }
  int status = 0;
  ASSERT_EQ(waitpid(child, &status, 0), child);
  ASSERT_TRUE(WIFEXITED(status) && WEXITSTATUS(status) == 0);
  const auto entries = [&] {
    return std::distance(std::filesystem::directory_iterator(folder.Path()), std::filesystem::directory_iterator());
  };
  ASSERT_EQ(entries(), 1);
  WriteInto(folder.Path());
  EXPECT_EQ(test::ReadHostFile(folder.Path() / "file"), "new");
  EXPECT_EQ(entries(), 2) << "the other's stays";
}

}  // namespace
}  // namespace parvex::posix
