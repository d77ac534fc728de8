#include "recording/old_cases.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <filesystem>

#include "adapters/posix/native_system.h"
#include "recording/case_layout.h"
#include "tests/support/fake_platform.h"

namespace parvex::recording {
namespace {

using testing::ElementsAre;

class OldCasesTest : public testing::Test {
 protected:
  std::string Folder() const { return folder.Path().string(); }
  void Write(const std::string& name, std::size_t bytes = 10) {
    std::filesystem::create_directories((folder.Path() / name).parent_path());
    test::WriteHostFile(folder.Path() / name, std::string(bytes, 'x'));
  }
  std::vector<std::string> Left() {
    std::vector<std::string> names;
    for (const HostSystem::Entry& entry : system.List(Folder())) {
      names.push_back(entry.name);
    }
    std::sort(names.begin(), names.end());
    return names;
  }

  test::TemporaryFolder folder;
  posix::NativeSystem system;
};

TEST_F(OldCasesTest, GoWhenThereAreMoreThanAreKept) {
  for (const char* name :
       {"20260101-000000-1-1-a.pvxcase", "20260102-000000-1-1-a.pvxcase", "20260103-000000-1-1-a.pvxcase"}) {
    Write(name);
  }
  RemoveOldCases(system, {.folder = Folder(), .keep = 2});
  EXPECT_THAT(Left(), ElementsAre("20260102-000000-1-1-a.pvxcase", "20260103-000000-1-1-a.pvxcase"));
}

TEST_F(OldCasesTest, GoWhenTheyTakeMoreRoomThanIsGiven) {
  Write("20260101-000000-1-1-a.pvxcase", 400'000);
  Write("20260102-000000-1-1-a.pvxcase.part/files.zip", 400'000);
  Write("20260103-000000-1-1-a.pvxcase", 400'000);
  RemoveOldCases(system, {.folder = Folder(), .megabytes = 1});
  EXPECT_THAT(Left(), ElementsAre("20260102-000000-1-1-a.pvxcase.part", "20260103-000000-1-1-a.pvxcase"));
}

TEST_F(OldCasesTest, TheNewestStaysHoweverLarge) {
  Write("20260101-000000-1-1-a.pvxcase", 2'000'000);
  RemoveOldCases(system, {.folder = Folder(), .keep = 0, .megabytes = 1});
  EXPECT_THAT(Left(), ElementsAre("20260101-000000-1-1-a.pvxcase"));
}

TEST_F(OldCasesTest, WhatAnotherHostRecordsAndOtherFilesStay) {
  std::filesystem::create_directories(folder.Path() / "20260101-000000-1-1-a.pvxcase.part");
  const auto open = system.MakeFile(Folder() + "/20260101-000000-1-1-a.pvxcase.part/" + std::string(kFiles));
  Write("20260102-000000-1-1-a.pvxcase.part/files.zip");
  Write("20260103-000000-1-1-a.pvxcase");
  Write("notes.txt");
  RemoveOldCases(system, {.folder = Folder(), .keep = 1});
  EXPECT_THAT(Left(), ElementsAre("20260101-000000-1-1-a.pvxcase.part", "20260103-000000-1-1-a.pvxcase", "notes.txt"));
}

TEST_F(OldCasesTest, WhatAnotherHostBeginsOrEndsStays) {
  const std::string begun = system.LocalTime() + "-1-1-begun.pvxcase.part";
  const std::string ending = system.LocalTime() + "-1-2-ending.pvxcase.part";
  std::filesystem::create_directories(folder.Path() / begun);
  Write(ending + "/files.zip");
  const auto journal = system.MakeFile(Folder() + "/" + ending + "/" + std::string(kJournal));
  std::filesystem::create_directories(folder.Path() / "20250101-000000-1-1-dead.pvxcase.part");
  Write("30000101-000000-1-1-newest.pvxcase");
  RemoveOldCases(system, {.folder = Folder(), .keep = 0});
  EXPECT_THAT(Left(), ElementsAre(begun, ending, "30000101-000000-1-1-newest.pvxcase"));
}

}  // namespace
}  // namespace parvex::recording
