#include "adapters/posix/host_replacement.h"

#include <fcntl.h>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <sys/stat.h>
#include <unistd.h>

#include <thread>

#include "adapters/posix/host_file.h"
#include "formats/text/new_file_names.h"
#include "seams/automation_error.h"
#include "tests/support/fake_platform.h"
#include "tests/support/raised_by.h"

namespace parvex::posix {
namespace {

using Readers = HostSystem::Readers;
using test::ErrorIn;
using testing::ElementsAre;
using testing::HasSubstr;

class HostReplacementTest : public testing::Test {
 protected:
  HostReplacementTest() { umask(022); }

  std::unique_ptr<HostSystem::Replacement> Replacing(Readers readers = Readers::AsUsual) const {
    return MakeHostReplacement(file.string(), readers);
  }
  void ReplaceBy(std::string_view bytes, Readers readers = Readers::AsUsual) const {
    const auto replacement = Replacing(readers);
    replacement->Append(bytes);
    replacement->TakeName();
  }
  static unsigned ModeOf(const std::filesystem::path& path) {
    struct stat status = {};
    lstat(path.c_str(), &status);
    return status.st_mode & 07777;
  }
  void Write(std::string_view bytes, mode_t mode) const {
    test::WriteHostFile(file, bytes);
    chmod(file.c_str(), mode);
  }
  std::vector<std::string> Names() const {
    std::vector<std::string> names;
    for (const auto& entry : std::filesystem::directory_iterator(folder.Path())) {
      names.push_back(entry.path().filename().string());
    }
    std::sort(names.begin(), names.end());
    return names;
  }

  test::TemporaryFolder folder;
  const std::filesystem::path file = folder.Path() / "quote.xml";
};

TEST_F(HostReplacementTest, HasTheModeOfWhatItReplacesFromTheFirstByteOn) {
  for (const mode_t mode : {0600u, 0640u, 0666u, 0200u}) {
    Write("old", mode);
    const auto replacement = Replacing();
    for (const std::string& name : Names()) {
      EXPECT_EQ(ModeOf(folder.Path() / name), mode) << name;
    }
    EXPECT_EQ(Names().size(), 2u);
    replacement->Append("new");
    replacement->TakeName();
    EXPECT_EQ(ModeOf(file), mode);
    EXPECT_THAT(Names(), ElementsAre("quote.xml"));
  }
}

TEST_F(HostReplacementTest, BelongsToTheGroupOfWhatItReplaces) {
  Write("old", 0660);
  const gid_t another = getegid() + 1;
  if (chown(file.c_str(), geteuid(), another) != 0) {
    GTEST_SKIP() << "this user may not give files to another group";
  }
  ReplaceBy("new");
  struct stat status = {};
  ASSERT_EQ(stat(file.c_str(), &status), 0);
  EXPECT_EQ(status.st_gid, another);
  EXPECT_EQ(status.st_uid, geteuid());
  EXPECT_EQ(ModeOf(file), 0660u);
}

TEST_F(HostReplacementTest, ThatIsTheFirstFollowsTheMask) {
  umask(027);
  ReplaceBy("new");
  EXPECT_EQ(ModeOf(file), 0640u);
  umask(022);
}

TEST_F(HostReplacementTest, ForItsOwnerOnlyIsReadByNobodyElse) {
  ReplaceBy("first", Readers::OwnerOnly);
  EXPECT_EQ(ModeOf(file), 0600u);
  Write("open to all", 0666);
  ReplaceBy("closed", Readers::OwnerOnly);
  EXPECT_EQ(ModeOf(file), 0600u);
}

TEST_F(HostReplacementTest, OfAReadOnlyFileIsRefusedEvenForRoot) {
  Write("old", 0444);
  EXPECT_EQ(ErrorIn([&] { Replacing(); }), "75 cannot write \"" + file.string() + "\": it is read-only");
  EXPECT_EQ(test::ReadHostFile(file), "old");
  EXPECT_THAT(Names(), ElementsAre("quote.xml"));
}

TEST_F(HostReplacementTest, OfALinkIsRefusedAndWhatItLeadsToStays) {
  const std::filesystem::path other = folder.Path() / "other.xml";
  test::WriteHostFile(other, "old");
  std::filesystem::create_symlink("other.xml", file);
  EXPECT_EQ(ErrorIn([&] { Replacing(); }), "75 cannot write \"" + file.string() + "\": it is a link");
  std::filesystem::remove(other);
  EXPECT_THAT(ErrorIn([&] { Replacing(); }), HasSubstr("it is a link")) << "though it leads nowhere";
  EXPECT_THAT(Names(), ElementsAre("quote.xml"));
}

TEST_F(HostReplacementTest, OfAFolderOrInNoFolderIsRefused) {
  std::filesystem::create_directory(file);
  EXPECT_THAT(ErrorIn([&] { Replacing(); }), HasSubstr("it is a folder"));
  EXPECT_EQ(test::RaisedBy([&] { MakeHostReplacement((folder.Path() / "no" / "file").string(), Readers::AsUsual); }),
            76);
}

TEST_F(HostReplacementTest, ThatIsNotFinishedLeavesEverythingAsItWas) {
  Write("old", 0644);
  Replacing()->Append("new");
  EXPECT_EQ(test::ReadHostFile(file), "old");
  EXPECT_THAT(Names(), ElementsAre("quote.xml"));
}

TEST_F(HostReplacementTest, OfTwoAtOnceBothAreWholeAndOneWins) {
  Write("old", 0644);
  const auto first = Replacing();
  const auto second = Replacing();
  EXPECT_EQ(Names().size(), 3u);
  first->Append("first");
  second->Append("second");
  second->TakeName();
  EXPECT_EQ(test::ReadHostFile(file), "second");
  first->TakeName();
  EXPECT_EQ(test::ReadHostFile(file), "first");
  EXPECT_THAT(Names(), ElementsAre("quote.xml"));
}

TEST_F(HostReplacementTest, LeavesTheOtherNamesOfAFileTheirContent) {
  Write("old", 0644);
  std::filesystem::create_hard_link(file, folder.Path() / "second name");
  ReplaceBy("new");
  EXPECT_EQ(test::ReadHostFile(folder.Path() / "second name"), "old");
}

TEST_F(HostReplacementTest, OfAPipeIsWrittenIntoIt) {
  ASSERT_EQ(mkfifo(file.c_str(), 0600), 0);
  std::string read;
  std::thread reader([&] {
    const int pipe = open(file.c_str(), O_RDONLY | O_CLOEXEC);
    char bytes[16];
    for (ssize_t got; (got = ::read(pipe, bytes, sizeof bytes)) > 0;) {
      read.append(bytes, static_cast<std::size_t>(got));
    }
    close(pipe);
  });
  ReplaceBy("through the pipe");
  reader.join();
  EXPECT_EQ(read, "through the pipe");
  EXPECT_TRUE(std::filesystem::is_fifo(file));
}

TEST_F(HostReplacementTest, OfADeviceIsWrittenIntoItAndALinkToOneIsFollowed) {
  MakeHostReplacement("/dev/null", Readers::OwnerOnly)->TakeName();
  EXPECT_TRUE(std::filesystem::is_character_file("/dev/null"));
  std::filesystem::create_symlink("/dev/full", file);
  EXPECT_EQ(test::RaisedBy([&] { ReplaceBy("too much"); }), 61);
  EXPECT_TRUE(std::filesystem::is_symlink(file));
}

// What a shell has standard output go to, and has written into before.
TEST_F(HostReplacementTest, OfAnOpenFileOfThisProcessGoesOnBehindWhatItHolds) {
  test::WriteHostFile(file, "before\n");
  const int opened = open(file.c_str(), O_WRONLY | O_APPEND | O_CLOEXEC);
  const auto replacement = MakeHostReplacement("/dev/fd/" + std::to_string(opened), Readers::AsUsual);
  replacement->Append("behind");
  replacement->TakeName();
  close(opened);
  EXPECT_EQ(test::ReadHostFile(file), "before\nbehind");
}

TEST_F(HostReplacementTest, IsAtHandToBeReadAndWrittenOver) {
  const auto replacement = Replacing();
  replacement->Append("0123456789");
  replacement->Overwrite(2, "ab");
  EXPECT_EQ(replacement->Read(1, 4), "1ab4");
  replacement->Truncate(5);
  replacement->Append("!");
  replacement->TakeName();
  EXPECT_EQ(test::ReadHostFile(file), "01ab4!");
}

}  // namespace
}  // namespace parvex::posix
