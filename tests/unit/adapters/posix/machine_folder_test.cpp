#include "adapters/posix/machine_folder.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "tests/support/fake_platform.h"
#include "tests/support/raised_by.h"

namespace parvex::posix {
namespace {

using test::RaisedBy;
using test::WriteHostFile;
using testing::ElementsAre;
using testing::IsEmpty;

class MachineFolderTest : public testing::Test {
 protected:
  MachineFolderTest() { std::filesystem::create_directories(Host("drive_c")); }

  std::filesystem::path Host(const std::string& name) const { return folder.Path() / name; }

  // A file of the machine with its own host path as content.
  void Make(const std::string& name) {
    std::filesystem::create_directories(Host(name).parent_path());
    WriteHostFile(Host(name), name);
  }

  // The host path relative to the root.
  std::string Found(std::string_view path) {
    const std::optional<std::filesystem::path> host = machine.Resolve(path);
    return host ? host->lexically_relative(folder.Path()).string() : "none";
  }

  test::TemporaryFolder folder;
  MachineFolder machine{folder.Path()};
};

TEST_F(MachineFolderTest, TheRootIsAbsoluteWithoutAFinalSlash) {
  EXPECT_EQ(MachineFolder(folder.Path() / "").Root(), folder.Path());
  EXPECT_EQ(MachineFolder(std::filesystem::relative(folder.Path())).Resolve("C:\\")->is_absolute(), true);
}

TEST_F(MachineFolderTest, AMissingRootIsPathNotFound) {
  EXPECT_EQ(RaisedBy([&] { MachineFolder machine(Host("no")); }), 76);
  Make("file");
  EXPECT_EQ(RaisedBy([&] { MachineFolder machine(Host("file")); }), 76);
}

TEST_F(MachineFolderTest, DrivesAreFoldersOfTheRoot) {
  Make("drive_c/a");
  Make("drive_d/b");
  EXPECT_EQ(Found("c:\\A"), "drive_c/a");
  EXPECT_EQ(Found("D:\\b"), "drive_d/b");
  EXPECT_EQ(Found("D:\\"), "drive_d");
  EXPECT_EQ(Found("E:\\"), "none");
  EXPECT_EQ(Found("E:\\a"), "none");
}

TEST_F(MachineFolderTest, TheExactSpellingIsTakenFirst) {
  Make("drive_c/BIN/a");
  Make("drive_c/bin/a");
  EXPECT_EQ(Found("C:\\bin\\a"), "drive_c/bin/a");
  EXPECT_EQ(Found("C:\\BIN\\a"), "drive_c/BIN/a");
}

TEST_F(MachineFolderTest, ElseTheFirstMatchInTheOrderOfTheBytes) {
  Make("drive_c/Bin/a");
  Make("drive_c/BIn/a");
  Make("drive_c/bIN/a");
  EXPECT_EQ(Found("C:\\BIN\\a"), "drive_c/BIn/a");
}

TEST_F(MachineFolderTest, AFileOnTheWayIsNoFolder) {
  Make("drive_c/file");
  EXPECT_EQ(Found("C:\\file\\a"), "none");
  EXPECT_EQ(Found("C:\\FILE\\a"), "none");
  EXPECT_EQ(Found("C:\\FILE\\"), "none");
}

TEST_F(MachineFolderTest, WhatWasFoundBeforeIsLookedForAgainWhenItIsGone) {
  Make("drive_c/Bin/Tools.xml");
  EXPECT_EQ(Found("C:\\BIN\\TOOLS.XML"), "drive_c/Bin/Tools.xml");
  std::filesystem::rename(Host("drive_c/Bin"), Host("drive_c/bIn"));
  EXPECT_EQ(Found("C:\\BIN\\TOOLS.XML"), "drive_c/bIn/Tools.xml");
  std::filesystem::remove(Host("drive_c/bIn/Tools.xml"));
  EXPECT_EQ(Found("C:\\BIN\\TOOLS.XML"), "none");
  Make("drive_c/bIn/TOOLS.xml");
  EXPECT_EQ(Found("C:\\BIN\\TOOLS.XML"), "drive_c/bIn/TOOLS.xml");
}

TEST_F(MachineFolderTest, EveryOneOfManySpellingsIsFound) {
  const std::string name = "abcdefghijklmn";
  Make("drive_c/" + name);
  for (std::size_t spelling = 0; spelling < 12'000; ++spelling) {
    std::string path = "C:\\" + name;
    for (std::size_t letter = 0; letter < name.size(); ++letter) {
      path[3 + letter] = static_cast<char>(name[letter] - ((spelling >> letter) & 1) * 0x20);
    }
    ASSERT_EQ(Found(path), "drive_c/" + name) << path;
  }
}

TEST_F(MachineFolderTest, NamesThatAreNoUtf8DoNotDisturb) {
  Make("drive_c/\xE4\xFF");
  Make("drive_c/Plain");
  EXPECT_EQ(Found("C:\\PLAIN"), "drive_c/Plain");
}

TEST_F(MachineFolderTest, TheTargetOfAnExistingFileIsThatFile) {
  Make("drive_c/Bin/Tools.xml");
  EXPECT_EQ(machine.Target("C:\\bin\\TOOLS.XML"), Host("drive_c/Bin/Tools.xml"));
}

TEST_F(MachineFolderTest, TheTargetOfANewFileKeepsItsSpelling) {
  Make("drive_c/Bin/Tools.xml");
  EXPECT_EQ(machine.Target("C:\\BIN\\New.Xml"), Host("drive_c/Bin/New.Xml"));
}

TEST_F(MachineFolderTest, TargetRefusesWhatCannotBecomeAFile) {
  Make("drive_c/Bin/Tools.xml");
  EXPECT_EQ(RaisedBy([&] { machine.Target("C:\\no\\a"); }), 76);
  EXPECT_EQ(RaisedBy([&] { machine.Target("E:\\a"); }), 76);
  EXPECT_EQ(RaisedBy([&] { machine.Target("C:\\bin"); }), 75);
  EXPECT_EQ(RaisedBy([&] { machine.Target("C:\\bin\\new\\"); }), 75);
  EXPECT_EQ(RaisedBy([&] { machine.Target("C:\\"); }), 75);
  EXPECT_EQ(RaisedBy([&] { machine.Target("C:\\nul"); }), 75);
  EXPECT_EQ(RaisedBy([&] { machine.Target("\\\\server\\share"); }), 75);
}

class LinksOfAMachine : public MachineFolderTest {
 protected:
  LinksOfAMachine() {
    WriteHostFile(outside.Path() / "file", "outside");
    std::filesystem::create_directory_symlink(outside.Path(), Host("drive_c/Out"));
    std::filesystem::create_symlink(outside.Path() / "file", Host("drive_c/outfile"));
  }

  test::TemporaryFolder outside;
};

TEST_F(LinksOfAMachine, AreReadThrough) {
  EXPECT_EQ(test::ReadHostFile(*machine.Resolve("C:\\out\\FILE")), "outside");
  EXPECT_EQ(test::ReadHostFile(*machine.Resolve("C:\\OUTFILE")), "outside");
}

TEST_F(LinksOfAMachine, AreNotWrittenThroughWhenTheyLeadOutOfTheDrive) {
  EXPECT_EQ(RaisedBy([&] { machine.Target("C:\\Out\\file"); }), 75);
  EXPECT_EQ(RaisedBy([&] { machine.Target("C:\\Out\\new"); }), 75);
  EXPECT_EQ(RaisedBy([&] { machine.Target("C:\\outfile"); }), 75);
}

TEST_F(LinksOfAMachine, AreWrittenThroughWithinTheDrive) {
  Make("drive_c/Real/file");
  std::filesystem::create_directory_symlink(Host("drive_c/Real"), Host("drive_c/Link"));
  EXPECT_EQ(machine.Target("C:\\Link\\file"), Host("drive_c/Link/file"));
}

TEST_F(LinksOfAMachine, ADriveMayBeALinkItself) {
  std::filesystem::create_directory_symlink(outside.Path(), Host("drive_d"));
  EXPECT_EQ(Found("D:\\file"), "drive_d/file");
  EXPECT_EQ(machine.Target("D:\\new"), Host("drive_d/new"));
}

TEST_F(LinksOfAMachine, AFolderBesideTheDriveIsOutsideAlsoWhenItsNameBeginsAlike) {
  Make("drive_c2/file");
  std::filesystem::create_directory_symlink(Host("drive_c2"), Host("drive_c/Beside"));
  EXPECT_EQ(RaisedBy([&] { machine.Target("C:\\Beside\\file"); }), 75);
}

TEST_F(LinksOfAMachine, ThatLeadNowhereDoNotExist) {
  std::filesystem::create_symlink(Host("drive_c/no"), Host("drive_c/Broken"));
  std::filesystem::create_symlink(Host("drive_c/Loop"), Host("drive_c/Loop"));
  EXPECT_EQ(Found("C:\\broken"), "none");
  EXPECT_EQ(Found("C:\\Broken"), "none");
  EXPECT_EQ(Found("C:\\loop\\a"), "none");
}

}  // namespace
}  // namespace parvex::posix
