#include "legacy_env/ini_target.h"

#include <gtest/gtest.h>

#include <thread>

#include "tests/support/fake_platform.h"

namespace parvex {
namespace {

constexpr const char* kFile = "C:\\Korvane\\TQ5-VX\\Temp\\Exchange.ini";

class IniTarget : public testing::Test {
 protected:
  test::FakeMachine machine_;
  const Platform& platform_ = machine_.platform;
  const test::FakeMessageBoxes::Box unregistered_ = {"[Section] and FileName Not Registered in Private.Ini!",
                                                     "IniFile Logic Error", MessageBoxes::Icon::Stop};
};

TEST_F(IniTarget, ShowsABoxAndGivesEmptyResultsBeforeItIsSet) {
  EXPECT_EQ(ReadIniString(platform_, "Key", "fallback"), "");
  EXPECT_EQ(ReadIniInt(platform_, "Key", 7), 0);
  EXPECT_EQ(WriteIniString(platform_, "Key", "value"), 0);
  EXPECT_EQ((std::vector{unregistered_, unregistered_, unregistered_}), machine_.boxes.boxes);
}

TEST_F(IniTarget, ReadsAndWritesItsSectionOfItsFile) {
  machine_.Write(kFile, "[Other]\r\nKey=no\r\n[Header]\r\nKey=yes\r\nCount=12x\r\n");
  SetIniTarget(platform_, "Header", kFile);
  EXPECT_EQ(ReadIniString(platform_, "Key", "fallback"), "yes");
  EXPECT_EQ(ReadIniInt(platform_, "Count", 7), 12);
  EXPECT_NE(WriteIniString(platform_, "New", "written"), 0);
  EXPECT_EQ(ReadIniString(platform_, "New", ""), "written");
  EXPECT_TRUE(machine_.boxes.boxes.empty());
}

TEST_F(IniTarget, GivesTheFallbackForAMissingKeySectionOrFile) {
  machine_.Write(kFile, "[Header]\r\nKey=yes\r\n");
  SetIniTarget(platform_, "Header", kFile);
  EXPECT_EQ(ReadIniString(platform_, "Missing", "CANCEL"), "CANCEL");
  EXPECT_EQ(ReadIniString(platform_, "Missing", ""), "");
  EXPECT_EQ(ReadIniInt(platform_, "Missing", 7), 7);
  SetIniTarget(platform_, "NoSuchSection", kFile);
  EXPECT_EQ(ReadIniString(platform_, "Key", "CANCEL"), "CANCEL");
  SetIniTarget(platform_, "Header", "C:\\NoSuch\\File.ini");
  EXPECT_EQ(ReadIniString(platform_, "Key", "CANCEL"), "CANCEL");
}

TEST_F(IniTarget, IsStoredWithoutOuterBlanks) {
  machine_.Write(kFile, "[Header]\r\nKey=yes\r\n");
  SetIniTarget(platform_, "  Header ", "  " + std::string(kFile) + "  ");
  EXPECT_EQ(ReadIniString(platform_, "Key", ""), "yes");
}

TEST_F(IniTarget, StaysUntilTheNextOneIsSet) {
  machine_.Write(kFile, "[A]\r\nKey=a\r\n[B]\r\nKey=b\r\n");
  SetIniTarget(platform_, "A", kFile);
  EXPECT_EQ(ReadIniString(platform_, "Key", ""), "a");
  EXPECT_EQ(ReadIniString(platform_, "Key", ""), "a");
  SetIniTarget(platform_, "B", kFile);
  EXPECT_EQ(ReadIniString(platform_, "Key", ""), "b");
}

TEST_F(IniTarget, CutsValuesAt254Characters) {
  machine_.Write(kFile, "[A]\r\nShort=" + std::string(254, 'x') + "\r\nLong=" + std::string(300, 'y') +
                            "\r\nUmlauts=" + std::string(300, '\xFC') + "\r\n");
  SetIniTarget(platform_, "A", kFile);
  EXPECT_EQ(ReadIniString(platform_, "Short", ""), std::string(254, 'x'));
  EXPECT_EQ(ReadIniString(platform_, "Long", ""), std::string(254, 'y'));
  EXPECT_EQ(platform_.codePage->ToAnsi(ReadIniString(platform_, "Umlauts", "")), std::string(254, '\xFC'));
}

TEST_F(IniTarget, SeesWhatAnotherProgramWroteMeanwhile) {
  machine_.Write(kFile, "[A]\r\nKey=before\r\n");
  SetIniTarget(platform_, "A", kFile);
  EXPECT_EQ(ReadIniString(platform_, "Key", ""), "before");
  machine_.Write(kFile, "[A]\r\nKey=after it\r\n");
  EXPECT_EQ(ReadIniString(platform_, "Key", ""), "after it");
}

TEST_F(IniTarget, WritesZeroWhenTheFileCannotBeWritten) {
  SetIniTarget(platform_, "A", "C:\\NoSuchFolder\\File.ini");
  EXPECT_EQ(WriteIniString(platform_, "Key", "value"), 0);
}

TEST_F(IniTarget, IsOneForEachThread) {
  machine_.Write(kFile, "[A]\r\nKey=a\r\n[B]\r\nKey=b\r\n");
  SetIniTarget(platform_, "A", kFile);
  std::string unset;
  std::string there;
  std::thread([&] {
    unset = ReadIniString(platform_, "Key", "fallback");
    SetIniTarget(platform_, "B", kFile);
    there = ReadIniString(platform_, "Key", "fallback");
  }).join();
  EXPECT_EQ(unset, "");
  EXPECT_EQ(std::vector{unregistered_}, machine_.boxes.boxes);
  EXPECT_EQ(there, "b");
  EXPECT_EQ(ReadIniString(platform_, "Key", "fallback"), "a");
}

}  // namespace
}  // namespace parvex
