#include "adapters/posix/machine_files.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <signal.h>
#include <sys/resource.h>
#include <sys/stat.h>

#include <set>

#include "tests/support/fake_platform.h"
#include "tests/support/raised_by.h"

namespace parvex::posix {
namespace {

using test::RaisedBy;
using test::WriteHostFile;
using testing::ElementsAre;
using testing::IsEmpty;

struct PatternRow {
  const char* pattern;
  const char* name;
  bool matches;
};

TEST(MatchesPattern, FollowsTheRulesOfADirectoryListing) {
  static constexpr PatternRow kRows[] = {
      {"*", "a.b", true},         {"*", "", true},
      {"a*", "abc", true},        {"a*", "b", false},
      {"*c", "abc", true},        {"*c", "abcd", false},
      {"a*c*e", "abcde", true},   {"a*c*e", "abcd", false},
      {"*b*b*", "abab", true},    {"*b*b*", "aba", false},
      {"a?c", "abc", true},       {"a?c", "ac", false},
      {"a??", "a", true},         {"a??", "abcd", false},
      {"a?.t", "a.t", true},      {"a?.t", "ab.t", true},
      {"a?.t", "abc.t", false},   {"?.t", "ä.t", true},
      {"ä?", "Ä日", true},        {"name.*", "name", true},
      {"name.*", "name.x", true}, {"name.*", "names", false},
      {"*.*", "plain", true},     {"*.txt", "a.TXT", true},
      {"*.txt", "a.txts", false}, {"*.txt", "txt", false},
      {"*.t?t", "a.b.txt", true}, {"*a*a*a*b", "aaaaaaaaac", false},
  };
  for (const PatternRow& row : kRows) {
    EXPECT_EQ(MatchesPattern(row.name, row.pattern), row.matches) << row.pattern << " " << row.name;
  }
}

TEST(MatchesPattern, IsQuickForAPatternOfManyStars) {
  std::string pattern;
  for (int i = 0; i < 1000; ++i) {
    pattern += "*a";
  }
  EXPECT_FALSE(MatchesPattern(std::string(20'000, 'a') + "b", pattern));
}

class MachineFilesTest : public testing::Test {
 protected:
  MachineFilesTest() { std::filesystem::create_directories(Host("")); }

  std::filesystem::path Host(const std::string& name) const { return folder.Path() / "drive_c" / name; }

  std::set<std::string> HostNames(const std::filesystem::path& host) const {
    std::set<std::string> names;
    for (const auto& entry : std::filesystem::directory_iterator(host)) {
      names.insert(entry.path().filename().string());
    }
    return names;
  }

  test::TemporaryFolder folder;
  MachineFolder machine{folder.Path()};
  MachineFiles files{machine};
};

TEST_F(MachineFilesTest, NamesThatTheMachineCannotHaveAreNotListed) {
  for (const char* name : {"plain", "a:b", "nul", "end.", "a?"}) {
    WriteHostFile(Host(name), "");
  }
  EXPECT_THAT(files.ListFiles("C:\\*"), ElementsAre("plain"));
}

TEST_F(MachineFilesTest, OfNamesThatDifferInLetterCaseOneIsListed) {
  WriteHostFile(Host("a.txt"), "lower");
  WriteHostFile(Host("A.txt"), "upper");
  EXPECT_THAT(files.ListFiles("C:\\*"), ElementsAre("A.txt"));
}

TEST_F(MachineFilesTest, DotFilesAreListedAsOthers) {
  WriteHostFile(Host(".hidden"), "");
  EXPECT_THAT(files.ListFiles("C:\\*.*"), ElementsAre(".hidden"));
}

TEST_F(MachineFilesTest, AFileThatIsNeitherFileNorFolderIsNotListed) {
  ASSERT_EQ(mkfifo(Host("pipe").c_str(), 0600), 0);
  EXPECT_THAT(files.ListFiles("C:\\*"), IsEmpty());
  EXPECT_FALSE(files.IsFile("C:\\pipe"));
}

TEST_F(MachineFilesTest, ReadingAPipeIsAnErrorAndDoesNotWait) {
  ASSERT_EQ(mkfifo(Host("pipe").c_str(), 0600), 0);
  EXPECT_EQ(RaisedBy([&] { files.ReadAll("C:\\pipe"); }), 75);
}

TEST_F(MachineFilesTest, APatternWithoutFolderListsTheCurrentFolder) {
  WriteHostFile(Host("a.txt"), "");
  EXPECT_THAT(files.ListFiles("*.txt"), ElementsAre("a.txt"));
  EXPECT_THAT(files.ListFiles("C:*.txt"), ElementsAre("a.txt"));
  EXPECT_THAT(files.ListFiles("a.txt"), ElementsAre("a.txt"));
}

TEST_F(MachineFilesTest, ReplaceKeepsPermissionsAndIsAnotherFile) {
  WriteHostFile(Host("a"), "old");
  std::filesystem::permissions(Host("a"), std::filesystem::perms(0640));
  std::filesystem::create_hard_link(Host("a"), folder.Path() / "second name");
  files.Replace("C:\\a", "new");
  EXPECT_EQ(std::filesystem::status(Host("a")).permissions(), std::filesystem::perms(0640));
  EXPECT_EQ(test::ReadHostFile(Host("a")), "new");
  EXPECT_EQ(test::ReadHostFile(folder.Path() / "second name"), "old");
}

TEST_F(MachineFilesTest, ReplaceLeavesAFileThatHoldsTheBytesAlready) {
  WriteHostFile(Host("a"), "same");
  const auto identity = [&] {
    struct stat status {};
    stat(Host("a").c_str(), &status);
    return status.st_ino;
  };
  const ino_t before = identity();
  files.Replace("C:\\A", "same");
  EXPECT_EQ(identity(), before);
  std::filesystem::create_symlink("a", Host("link"));
  files.Replace("C:\\link", "same");
  EXPECT_FALSE(std::filesystem::is_symlink(Host("link")));
  std::filesystem::permissions(Host("a"), std::filesystem::perms(0440));
  EXPECT_EQ(RaisedBy([&] { files.Replace("C:\\a", "same"); }), 75);
}

// A file size limit stands for a full disk: root is held to it too.
class FullDisk {
 public:
  FullDisk() {
    getrlimit(RLIMIT_FSIZE, &before_);
    signal(SIGXFSZ, SIG_IGN);
    const rlimit small{1000, before_.rlim_max};
    setrlimit(RLIMIT_FSIZE, &small);
  }
  ~FullDisk() {
    setrlimit(RLIMIT_FSIZE, &before_);
    signal(SIGXFSZ, SIG_DFL);
  }

 private:
  rlimit before_;
};

TEST_F(MachineFilesTest, AFailedWriteLeavesTheOldFileAndNothingElse) {
  WriteHostFile(Host("a"), "old");
  const std::string large(5000, 'x');
  int replacing = 0;
  int creating = 0;
  {
    const FullDisk full;
    replacing = RaisedBy([&] { files.Replace("C:\\a", large); });
    creating = RaisedBy([&] { files.CreateNew("C:\\b", large); });
  }
  EXPECT_EQ(replacing, 61);
  EXPECT_EQ(creating, 61);
  EXPECT_EQ(test::ReadHostFile(Host("a")), "old");
  EXPECT_EQ(HostNames(Host("")), std::set<std::string>{"a"});
}

TEST_F(MachineFilesTest, CreateNewDoesNotTakeANameThatALinkHas) {
  std::filesystem::create_symlink(Host("no such file"), Host("link"));
  EXPECT_EQ(RaisedBy([&] { files.CreateNew("C:\\link", "x"); }), 58);
  EXPECT_EQ(HostNames(Host("")), std::set<std::string>{"link"});
}

TEST_F(MachineFilesTest, NothingIsWrittenOrRemovedThroughALinkThatLeadsOut) {
  test::TemporaryFolder outside;
  std::filesystem::create_directories(outside.Path() / "folder");
  WriteHostFile(outside.Path() / "file", "kept");
  std::filesystem::create_directory_symlink(outside.Path(), Host("out"));
  EXPECT_EQ(files.ReadAll("C:\\out\\file"), "kept");
  EXPECT_EQ(RaisedBy([&] { files.Replace("C:\\out\\file", "x"); }), 75);
  EXPECT_EQ(RaisedBy([&] { files.CreateNew("C:\\out\\new", "x"); }), 75);
  EXPECT_EQ(RaisedBy([&] { files.Remove("C:\\out\\file"); }), 75);
  EXPECT_EQ(RaisedBy([&] { files.CreateFolder("C:\\out\\new\\folder"); }), 75);
  EXPECT_EQ(RaisedBy([&] { files.RemoveFolder("C:\\out\\folder"); }), 75);
  EXPECT_EQ(test::ReadHostFile(outside.Path() / "file"), "kept");
  EXPECT_EQ(HostNames(outside.Path()), (std::set<std::string>{"file", "folder"}));
}

TEST_F(MachineFilesTest, RemovingAFolderDoesNotFollowTheLinksInIt) {
  test::TemporaryFolder outside;
  WriteHostFile(outside.Path() / "file", "kept");
  files.CreateFolder("C:\\a");
  std::filesystem::create_directory_symlink(outside.Path(), Host("a/out"));
  files.RemoveFolder("C:\\a");
  EXPECT_FALSE(std::filesystem::exists(Host("a")));
  EXPECT_EQ(test::ReadHostFile(outside.Path() / "file"), "kept");
}

TEST_F(MachineFilesTest, ADriveIsNeitherMadeNorRemoved) {
  EXPECT_EQ(RaisedBy([&] { files.CreateFolder("E:\\a"); }), 76);
  EXPECT_EQ(RaisedBy([&] { files.RemoveFolder("C:\\"); }), 75);
  EXPECT_TRUE(files.IsFolder("C:\\"));
  files.CreateFolder("C:\\");
}

TEST_F(MachineFilesTest, AnErrorNamesThePathOfTheMachine) {
  const auto said = [](auto action) {
    try {
      action();
      return std::string();
    } catch (const AutomationError& error) {
      return error.Description();
    }
  };
  files.CreateFolder("C:\\folder");
  EXPECT_THAT(said([&] { files.ReadAll("C:\\no\\no.txt"); }), testing::HasSubstr("C:\\no\\no.txt"));
  EXPECT_THAT(said([&] { files.ReadAll("C:\\folder"); }), testing::HasSubstr("C:\\folder"));
  EXPECT_THAT(said([&] { files.Replace("C:\\no\\a.txt", ""); }), testing::HasSubstr("C:\\no\\a.txt"));
  EXPECT_THAT(said([&] { files.Replace("C:\\a|b", ""); }), testing::HasSubstr("C:\\a|b"));
  EXPECT_THAT(said([&] { files.Remove("C:\\b.txt"); }), testing::HasSubstr("C:\\b.txt"));
  EXPECT_THAT(said([&] { files.RemoveFolder("C:\\no"); }), testing::HasSubstr("C:\\no"));
}

}  // namespace
}  // namespace parvex::posix
