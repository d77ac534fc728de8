#include "replay/kept_files.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "replay/machine_on_disk.h"
#include "replay/network_drive.h"
#include "tests/support/fake_platform.h"
#include "tests/unit/recording/fake_system.h"

namespace parvex::replay {
namespace {

using journal::Json;
using testing::ElementsAre;
using testing::IsEmpty;
using testing::Key;
using testing::Not;

recording::RecordedCase CaseOf(std::vector<recording::KeptFile> files, const std::vector<std::string>& lines,
                               const char* outcome = "reply") {
  recording::RecordedCase recorded;
  recorded.facts = {{"outcome", outcome}};
  recorded.files = std::move(files);
  for (const std::string& line : lines) {
    recorded.steps.push_back(Json::parse(line));
  }
  return recorded;
}

TEST(FilesBefore, AreThoseOfTheMachineWithTheirFolders) {
  const auto recorded = CaseOf({{"machine/drive_c/A/b.ini", "x", false},
                                {"machine/drive_d/E/", "", true},
                                {"machine/registry.reg", "r", false},
                                {"after/1/drive_c/c.ini", "y", false}},
                               {});
  std::string made;
  const KeptFiles before = FilesBefore(recorded, made);
  EXPECT_THAT(before.files, ElementsAre(Key("DRIVE_C/A/B.INI"), Key("REGISTRY.REG")));
  EXPECT_THAT(before.folders, ElementsAre(Key("DRIVE_C"), Key("DRIVE_C/A"), Key("DRIVE_D"), Key("DRIVE_D/E")));
  EXPECT_EQ(made, "");
}

TEST(FilesBefore, HaveTheFoldersThatTheCallWroteIntoAndDidNotMake) {
  const auto recorded = CaseOf(
      {}, {R"({"n":1,"at":"before","kind":"file","op":"createFolder","path":"C:\\Own"})", R"({"n":1,"at":"after"})",
           R"({"n":2,"at":"before","kind":"file","op":"replace","path":"C:\\Own\\a"})", R"({"n":2,"at":"after"})",
           R"({"n":3,"at":"before","kind":"file","op":"replace","path":"C:\\There\\a"})", R"({"n":3,"at":"after"})",
           R"({"n":4,"at":"before","kind":"file","op":"replace","path":"C:\\None\\a"})",
           R"({"n":4,"at":"after","error":{}})"});
  std::string made;
  EXPECT_THAT(FilesBefore(recorded, made).folders, ElementsAre(Key("DRIVE_C"), Key("DRIVE_C/THERE")));
}

TEST(FilesBefore, OfARecordThatEndedHaveItsNamesAndItsRegistry) {
  const auto recorded =
      CaseOf({},
             {R"({"n":1,"at":"before","kind":"registry","op":"read","key":"HKEY_LOCAL_MACHINE\\K","value":"V"})",
              R"({"n":1,"at":"after","result":"text"})",
              R"({"n":2,"at":"once","kind":"file","op":"isFile","path":"C:\\a","result":true})",
              R"({"n":3,"at":"once","kind":"file","op":"isFile","path":"C:\\b","result":false})",
              R"({"n":4,"at":"before","kind":"file","op":"listFiles","path":"C:\\L\\*.*"})",
              R"({"n":4,"at":"after","result":["c"]})"},
             "unfinished");
  std::string made;
  const KeptFiles before = FilesBefore(recorded, made);
  EXPECT_THAT(before.files, ElementsAre(Key("DRIVE_C/A"), Key("DRIVE_C/L/C"), Key("REGISTRY.REG")));
  EXPECT_THAT(made, Not(IsEmpty()));
}

TEST(FilesAfter, AreAsTheLastStepLeftThem) {
  const auto recorded = CaseOf(
      {{"machine/drive_c/kept", "1", false},
       {"machine/drive_c/removed", "1", false},
       {"machine/drive_c/F/inside", "1", false},
       {"after/2/drive_c/new", "2", false}},
      {R"({"n":1,"at":"before","kind":"file","op":"remove","path":"C:\\REMOVED"})", R"({"n":1,"at":"after"})",
       R"({"n":2,"at":"once","kind":"process","op":"end","left":[{"path":"C:\\new","stored":"after/2/drive_c/new"}]})",
       R"({"n":3,"at":"before","kind":"file","op":"removeFolder","path":"C:\\F"})", R"({"n":3,"at":"after"})",
       R"({"n":4,"at":"before","kind":"file","op":"remove","path":"C:\\kept"})", R"({"n":4,"at":"after","error":{}})",
       R"({"n":5,"at":"once","kind":"file","op":"left","path":"C:\\lost","stored":"after/5/drive_c/lost"})"});
  std::string made;
  const KeptFiles after = FilesAfter(recorded, MembersOf(recorded), FilesBefore(recorded, made));
  EXPECT_THAT(after.files,
              ElementsAre(Key("DRIVE_C/KEPT"), Key("DRIVE_C/LOST"), Key("DRIVE_C/NEW"), Key("REGISTRY.REG")));
  EXPECT_EQ(after.files.at("DRIVE_C/NEW").bytes, "2");
  EXPECT_FALSE(after.files.at("DRIVE_C/LOST").bytes.has_value());
  EXPECT_THAT(after.folders, ElementsAre(Key("DRIVE_C")));
}

TEST(LayOut, WritesNamesThatDifferInLetterCaseIntoOneFolder) {
  const auto recorded =
      CaseOf({{"machine/drive_c/Korvane/a", "1", false}, {"machine/drive_c/KORVANE/b", "2", false}}, {});
  test::TemporaryFolder folder;
  test::FakeSystem system;
  std::string made;
  const KeptFiles files = FilesBefore(recorded, made);
  LayOut(system, folder.Path().string(), files);
  EXPECT_EQ(test::ReadHostFile(folder.Path() / "drive_c/Korvane/a"), "1");
  EXPECT_EQ(test::ReadHostFile(folder.Path() / "drive_c/Korvane/b"), "2");
  EXPECT_THAT(CompareFiles(system, folder.Path().string(), files, false), IsEmpty());
}

TEST(NetworkDrive, HasTheFilesOfANetworkWhereNoOtherAre) {
  const auto recorded = CaseOf({{"machine/unc/SERVER/share/a", "1", false}, {"machine/drive_z/b", "2", false}}, {});
  std::string made;
  const KeptFiles files = FilesBefore(recorded, made);
  const NetworkDrive network(files, files);
  EXPECT_THAT(network.Moved(files).files,
              ElementsAre(Key("DRIVE_Y/SERVER/SHARE/A"), Key("DRIVE_Z/B"), Key("REGISTRY.REG")));
  EXPECT_EQ(network.Path("\\\\server\\share\\*.*"), "Y:\\server\\share\\*.*");
  EXPECT_EQ(network.Path("C:\\a"), "C:\\a");
  EXPECT_EQ(NetworkDrive().Path("\\\\server\\a"), "\\\\server\\a");
}

TEST(CompareFiles, TellsFilesAndFoldersThatDiffer) {
  const auto recorded = CaseOf({{"machine/drive_c/a", "1", false}, {"machine/drive_c/gone", "1", false}}, {});
  test::TemporaryFolder folder;
  test::FakeSystem system;
  std::string made;
  const KeptFiles files = FilesBefore(recorded, made);
  LayOut(system, folder.Path().string(), files);
  test::WriteHostFile(folder.Path() / "drive_c/a", "2");
  std::filesystem::remove(folder.Path() / "drive_c/gone");
  std::filesystem::create_directories(folder.Path() / "drive_d");
  test::WriteHostFile(folder.Path() / "drive_d/new", "3");
  std::vector<std::string> told;
  for (const Difference& one : CompareFiles(system, folder.Path().string(), files, false)) {
    told.push_back(one.what + ": " + one.expected + " / " + one.actual);
  }
  EXPECT_THAT(told, ElementsAre("C:\\a: 1 / 2", "C:\\gone: 1 bytes / no such file", "D:\\new: no such file / 1 bytes",
                                "D:: no such folder / a folder"));
}

}  // namespace
}  // namespace parvex::replay
