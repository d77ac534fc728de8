#include "adapters/posix/folder_names.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <unistd.h>

#include "adapters/posix/machine_files.h"
#include "tests/support/fake_platform.h"
#include "tests/support/raised_by.h"

namespace parvex::posix {
namespace {

using test::RaisedBy;
using test::WriteHostFile;
using testing::ElementsAre;

// What a folder's listing says of names in another letter case, after changes of this program and of others.
class FolderNamesTest : public testing::Test {
 protected:
  FolderNamesTest() { std::filesystem::create_directories(Host("")); }

  std::filesystem::path Host(const std::string& name) const { return folder.Path() / "drive_c" / "Blobs" / name; }

  // Changes of the folder from now on have another time than those before.
  static void WaitForTheClock() { usleep(60'000); }

  bool IsThere(const std::string& name) { return files.IsFile("C:\\Blobs\\" + name); }

  test::TemporaryFolder folder;
  MachineFolder machine{folder.Path()};
  MachineFiles files{machine};
};

TEST_F(FolderNamesTest, AFileThatWasWrittenIsFoundInAnotherLetterCase) {
  EXPECT_FALSE(IsThere("UNIT.XML"));
  files.Replace("C:\\Blobs\\Unit.xml", "1");
  EXPECT_TRUE(IsThere("UNIT.XML"));
  files.Replace("C:\\Blobs\\uNIT.XML", "2");
  EXPECT_THAT(files.ListFiles("C:\\Blobs\\*"), ElementsAre("Unit.xml"));
  EXPECT_EQ(files.ReadAll("C:\\Blobs\\UNIT.xml"), "2");
}

TEST_F(FolderNamesTest, AFileThatWasRemovedIsFoundInNoLetterCase) {
  files.Replace("C:\\Blobs\\Unit.xml", "1");
  EXPECT_TRUE(IsThere("UNIT.XML"));
  files.Remove("C:\\Blobs\\unit.XML");
  EXPECT_FALSE(IsThere("UNIT.XML"));
}

TEST_F(FolderNamesTest, AWriteThatFailsLeavesWhatWasThere) {
  WriteHostFile(Host("Kept.xml"), "kept");
  std::filesystem::create_directories(Host("Taken"));
  WaitForTheClock();
  EXPECT_TRUE(IsThere("KEPT.XML"));
  std::filesystem::create_symlink(Host("nowhere"), Host("Link"));
  EXPECT_EQ(RaisedBy([&] { files.CreateNew("C:\\Blobs\\Link", "x"); }), 58);
  EXPECT_EQ(RaisedBy([&] { files.Replace("C:\\Blobs\\taken", "x"); }), 75);
  EXPECT_TRUE(IsThere("kept.XML"));
  EXPECT_FALSE(IsThere("LINK"));
  files.Replace("C:\\Blobs\\New.xml", "x");
  EXPECT_TRUE(IsThere("NEW.XML"));
}

TEST_F(FolderNamesTest, WhatAnotherProgramChangesBetweenOurWritesIsSeen) {
  for (int i = 0; i < 3; ++i) {
    const std::string number = std::to_string(i);
    files.Replace("C:\\Blobs\\Ours" + number, "x");
    WaitForTheClock();
    WriteHostFile(Host("Theirs" + number), "x");
    EXPECT_TRUE(IsThere("THEIRS" + number));
    files.Replace("C:\\Blobs\\More" + number, "x");
    EXPECT_TRUE(IsThere("THEIRS" + number));
    EXPECT_TRUE(IsThere("MORE" + number));
    std::filesystem::remove(Host("Theirs" + number));
    EXPECT_FALSE(IsThere("THEIRS" + number));
  }
}

TEST_F(FolderNamesTest, WhatAnotherProgramChangesBeforeOurWriteIsSeenAfterIt) {
  WriteHostFile(Host("Ours"), "x");
  WaitForTheClock();
  EXPECT_FALSE(IsThere("THEIRS"));
  WriteHostFile(Host("Theirs"), "x");
  files.Replace("C:\\Blobs\\Ours", "y");
  EXPECT_TRUE(IsThere("THEIRS"));
  EXPECT_TRUE(IsThere("OURS"));
}

// A file system whose clock moves in steps gives two changes one time. The folder's status is handed over as it would
// be then, since not every system has such steps.
class FolderNamesBySteps : public FolderNamesTest {
 protected:
  struct stat Status() const {
    struct stat status;
    EXPECT_EQ(stat(Folder().c_str(), &status), 0);
    return status;
  }

  std::string Folder() const { return folder.Path() / "drive_c" / "Blobs"; }

  FolderNames names;
};

TEST_F(FolderNamesBySteps, WhatAnotherProgramChangesInTheStepOfOurLookIsSeenAfterOurWrite) {
  const struct stat atOurLook = Status();
  EXPECT_EQ(names.Find(Folder(), atOurLook, "THEIRS"), std::nullopt);
  WriteHostFile(Host("Theirs"), "x");
  names.BeforeChange(Folder(), atOurLook);
  WriteHostFile(Host("Ours"), "x");
  names.AfterAdding(Folder(), "Ours");
  EXPECT_EQ(names.Find(Folder(), Status(), "THEIRS"), "Theirs");
}

TEST_F(FolderNamesBySteps, WhatAnotherProgramChangesInTheStepOfOurWriteIsSeenSoonAfter) {
  WaitForTheClock();
  EXPECT_EQ(names.Find(Folder(), Status(), "THEIRS"), std::nullopt);
  names.BeforeChange(Folder(), Status());
  WriteHostFile(Host("Ours"), "x");
  names.AfterAdding(Folder(), "Ours");
  const struct stat atOurWrite = Status();
  WriteHostFile(Host("Theirs"), "x");
  WaitForTheClock();
  EXPECT_EQ(names.Find(Folder(), atOurWrite, "THEIRS"), "Theirs");
  EXPECT_EQ(names.Find(Folder(), atOurWrite, "OURS"), "Ours");
}

TEST_F(FolderNamesTest, AFolderThatWasMadeIsKnownWithWhatIsWrittenIntoIt) {
  EXPECT_FALSE(files.IsFolder("C:\\BLOBS\\SUB"));
  files.CreateFolder("C:\\Blobs\\Sub");
  EXPECT_TRUE(files.IsFolder("C:\\Blobs\\SUB"));
  EXPECT_FALSE(IsThere("Sub\\A"));
  files.Replace("C:\\Blobs\\Sub\\a", "x");
  EXPECT_TRUE(IsThere("SUB\\A"));
  files.RemoveFolder("C:\\Blobs\\Sub");
  EXPECT_FALSE(IsThere("SUB\\A"));
  files.CreateFolder("C:\\Blobs\\Sub");
  EXPECT_FALSE(IsThere("SUB\\A"));
}

TEST_F(FolderNamesTest, WhatAnotherProgramPutsIntoANewFolderIsSeen) {
  files.CreateFolder("C:\\Blobs\\Sub");
  EXPECT_FALSE(IsThere("Sub\\A"));
  WaitForTheClock();
  WriteHostFile(Host("Sub/a"), "x");
  EXPECT_TRUE(IsThere("SUB\\A"));
}

TEST_F(FolderNamesTest, EveryOneOfManyFoldersIsKnown) {
  for (int i = 0; i < 200; ++i) {
    const std::string number = std::to_string(i);
    files.CreateFolder("C:\\Blobs\\Sub" + number);
    files.Replace("C:\\Blobs\\Sub" + number + "\\a", number);
    EXPECT_TRUE(IsThere("SUB" + number + "\\A"));
  }
  for (int i = 0; i < 200; ++i) {
    EXPECT_EQ(files.ReadAll("C:\\BLOBS\\SUB" + std::to_string(i) + "\\A"), std::to_string(i));
  }
}

// --- Links ---

TEST_F(FolderNamesTest, ALinkIsToldFromTheFileThatItLeadsTo) {
  WriteHostFile(Host("real"), "x");
  std::filesystem::create_symlink("real", Host("link"));
  EXPECT_FALSE(files.MayBeLink("C:\\Blobs\\real"));
  EXPECT_TRUE(files.MayBeLink("C:\\Blobs\\link"));
  EXPECT_TRUE(files.MayBeLink("C:\\Blobs\\LINK"));
}

// --- Reading what may not be there ---

TEST_F(FolderNamesTest, OnlyAFileIsReadIfItIsOne) {
  WriteHostFile(Host("Unit.xml"), "bytes");
  EXPECT_EQ(files.ReadIfFile("C:\\Blobs\\Unit.xml"), "bytes");
  EXPECT_EQ(files.ReadIfFile("C:\\BLOBS\\UNIT.XML"), "bytes");
  EXPECT_EQ(files.ReadIfFile("C:\\Blobs\\Unit.xml\\"), std::nullopt);
  EXPECT_EQ(files.ReadIfFile("C:\\Blobs"), std::nullopt);
  EXPECT_EQ(files.ReadIfFile("C:\\Blobs\\no"), std::nullopt);
  EXPECT_EQ(files.ReadIfFile("C:\\a|b"), std::nullopt);
}

// --- Names of new files ---

TEST_F(FolderNamesTest, ANewFileBesideThatAnotherProgramLeftIsNoHindrance) {
  files.Replace("C:\\Blobs\\first", "x");
  for (int i = 0; i < 300; ++i) {
    WriteHostFile(Host("~parvex-" + std::to_string(getpid()) + "-" + std::to_string(i) + ".tmp"), "left");
  }
  files.Replace("C:\\Blobs\\second", "x");
  EXPECT_EQ(files.ReadAll("C:\\Blobs\\second"), "x");
}

// --- Sections of one version of a file ---

TEST_F(FolderNamesTest, AHeldProfileFileShowsOneVersionUntilThisProgramWritesIt) {
  test::FakeMachine machine;
  const std::string file = "C:\\Temp\\a.ini";
  const auto value = [&] { return machine.platform.privateProfile->Section("S", file)->ReadString("k", "none", 255); };
  machine.Write(file, "[S]\r\nk=1\r\n");
  std::shared_ptr<void> hold = machine.platform.privateProfile->Hold(file);
  machine.Write(file, "[S]\r\nk=22\r\n");
  EXPECT_EQ(value(), "1");
  EXPECT_TRUE(machine.platform.privateProfile->Section("S", file)->WriteString("l", "3"));
  EXPECT_EQ(value(), "22");
  hold = machine.platform.privateProfile->Hold(file);
  machine.Write(file, "[S]\r\nk=333\r\n");
  EXPECT_EQ(value(), "22");
  hold = nullptr;
  EXPECT_EQ(value(), "333");
}

}  // namespace
}  // namespace parvex::posix
