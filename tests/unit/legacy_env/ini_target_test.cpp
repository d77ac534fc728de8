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
  EXPECT_EQ("", ReadIniString(platform_, "Key", "fallback"));
  EXPECT_EQ(0, ReadIniInt(platform_, "Key", 7));
  EXPECT_EQ(0, WriteIniString(platform_, "Key", "value"));
  EXPECT_EQ((std::vector{unregistered_, unregistered_, unregistered_}), machine_.boxes.boxes);
}

TEST_F(IniTarget, ReadsAndWritesItsSectionOfItsFile) {
  machine_.Write(kFile, "[Other]\r\nKey=no\r\n[Header]\r\nKey=yes\r\nCount=12x\r\n");
  SetIniTarget(platform_, "Header", kFile);
  EXPECT_EQ("yes", ReadIniString(platform_, "Key", "fallback"));
  EXPECT_EQ(12, ReadIniInt(platform_, "Count", 7));
  EXPECT_NE(0, WriteIniString(platform_, "New", "written"));
  EXPECT_EQ("written", ReadIniString(platform_, "New", ""));
  EXPECT_TRUE(machine_.boxes.boxes.empty());
}

TEST_F(IniTarget, GivesTheFallbackForAMissingKeySectionOrFile) {
  machine_.Write(kFile, "[Header]\r\nKey=yes\r\n");
  SetIniTarget(platform_, "Header", kFile);
  EXPECT_EQ("CANCEL", ReadIniString(platform_, "Missing", "CANCEL"));
  EXPECT_EQ("", ReadIniString(platform_, "Missing", ""));
  EXPECT_EQ(7, ReadIniInt(platform_, "Missing", 7));
  SetIniTarget(platform_, "NoSuchSection", kFile);
  EXPECT_EQ("CANCEL", ReadIniString(platform_, "Key", "CANCEL"));
  SetIniTarget(platform_, "Header", "C:\\NoSuch\\File.ini");
  EXPECT_EQ("CANCEL", ReadIniString(platform_, "Key", "CANCEL"));
}

TEST_F(IniTarget, IsStoredWithoutOuterBlanks) {
  machine_.Write(kFile, "[Header]\r\nKey=yes\r\n");
  SetIniTarget(platform_, "  Header ", "  " + std::string(kFile) + "  ");
  EXPECT_EQ("yes", ReadIniString(platform_, "Key", ""));
}

TEST_F(IniTarget, StaysUntilTheNextOneIsSet) {
  machine_.Write(kFile, "[A]\r\nKey=a\r\n[B]\r\nKey=b\r\n");
  SetIniTarget(platform_, "A", kFile);
  EXPECT_EQ("a", ReadIniString(platform_, "Key", ""));
  EXPECT_EQ("a", ReadIniString(platform_, "Key", ""));
  SetIniTarget(platform_, "B", kFile);
  EXPECT_EQ("b", ReadIniString(platform_, "Key", ""));
}

TEST_F(IniTarget, CutsValuesAt254Characters) {
  machine_.Write(kFile, "[A]\r\nShort=" + std::string(254, 'x') + "\r\nLong=" + std::string(300, 'y') +
                            "\r\nUmlauts=" + std::string(300, '\xFC') + "\r\n");
  SetIniTarget(platform_, "A", kFile);
  EXPECT_EQ(std::string(254, 'x'), ReadIniString(platform_, "Short", ""));
  EXPECT_EQ(std::string(254, 'y'), ReadIniString(platform_, "Long", ""));
  EXPECT_EQ(std::string(254, '\xFC'), platform_.codePage.ToAnsi(ReadIniString(platform_, "Umlauts", "")));
}

TEST_F(IniTarget, SeesWhatAnotherProgramWroteMeanwhile) {
  machine_.Write(kFile, "[A]\r\nKey=before\r\n");
  SetIniTarget(platform_, "A", kFile);
  EXPECT_EQ("before", ReadIniString(platform_, "Key", ""));
  machine_.Write(kFile, "[A]\r\nKey=after it\r\n");
  EXPECT_EQ("after it", ReadIniString(platform_, "Key", ""));
}

TEST_F(IniTarget, WritesZeroWhenTheFileCannotBeWritten) {
  SetIniTarget(platform_, "A", "C:\\NoSuchFolder\\File.ini");
  EXPECT_EQ(0, WriteIniString(platform_, "Key", "value"));
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
  EXPECT_EQ("", unset);
  EXPECT_EQ(std::vector{unregistered_}, machine_.boxes.boxes);
  EXPECT_EQ("b", there);
  EXPECT_EQ("a", ReadIniString(platform_, "Key", "fallback"));
}

}  // namespace
}  // namespace parvex
