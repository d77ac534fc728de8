#include "adapters/posix/registry_file.h"

#include <gtest/gtest.h>

#include "formats/text/windows_1252.h"
#include "tests/support/fake_platform.h"
#include "tests/support/registry_export.h"

namespace parvex::posix {
namespace {

using test::kHeader4;
using test::Utf16LittleEndian;

class RegistryFileTest : public testing::Test {
 protected:
  void Write(std::string_view text) { test::WriteHostFile(folder.Path() / "registry.reg", text); }

  test::TemporaryFolder folder;
  MachineFolder machine{folder.Path()};
  Windows1252 codePage;
  RegistryFile registry{machine, codePage};
};

TEST_F(RegistryFileTest, WithoutFileThereAreNoValues) {
  EXPECT_EQ(registry.LocalMachineString("K", "v"), std::nullopt);
  std::filesystem::create_directory(folder.Path() / "registry.reg");
  EXPECT_EQ(registry.LocalMachineString("K", "v"), std::nullopt);
}

TEST_F(RegistryFileTest, EachVersionOfTheFileIsSeen) {
  Write(kHeader4 + "\"v\"=\"1\"\r\n");
  EXPECT_EQ(registry.LocalMachineString("K", "v"), "1");
  Write(kHeader4 + "\"v\"=\"22\"\r\n");
  EXPECT_EQ(registry.LocalMachineString("K", "v"), "22");
  std::filesystem::remove(folder.Path() / "registry.reg");
  EXPECT_EQ(registry.LocalMachineString("K", "v"), std::nullopt);
}

TEST_F(RegistryFileTest, AChangeRightAfterALookIsSeenThoughSizeAndTimeMayStayAsTheyAre) {
  for (int i = 0; i < 200; ++i) {
    const std::string value = std::to_string(100 + i);
    Write(kHeader4 + "\"v\"=\"" + value + "\"\r\n");
    ASSERT_EQ(registry.LocalMachineString("K", "v"), value);
  }
}

TEST_F(RegistryFileTest, OnlyTheLocalMachineIsLookedAt) {
  Write("REGEDIT4\n[HKEY_CURRENT_USER\\K]\n\"v\"=\"x\"\n");
  EXPECT_EQ(registry.LocalMachineString("K", "v"), std::nullopt);
  EXPECT_EQ(registry.LocalMachineString("HKEY_CURRENT_USER\\K", "v"), std::nullopt);
}

TEST_F(RegistryFileTest, AnExportOfA64BitMachineIsUnderstood) {
  Write("REGEDIT4\n[HKEY_LOCAL_MACHINE\\SOFTWARE\\WOW6432Node\\Korvane\\KDQ47]\n\"BinPath\"=\"32\"\n");
  EXPECT_EQ(registry.LocalMachineString("SOFTWARE\\Korvane\\KDQ47\\", "binPath"), "32");
  Write(
      "REGEDIT4\n[HKEY_LOCAL_MACHINE\\SOFTWARE\\WOW6432Node\\Korvane\\KDQ47]\n\"BinPath\"=\"32\"\n"
      "[HKEY_LOCAL_MACHINE\\SOFTWARE\\Korvane\\KDQ47]\n\"BinPath\"=\"64\"\n");
  EXPECT_EQ(registry.LocalMachineString("Software\\Korvane\\KDQ47", "BinPath"), "64");
}

TEST_F(RegistryFileTest, OwnSettingsAreThoseOfTheirHiveOnly) {
  Write(
      "REGEDIT4\n[HKEY_CURRENT_USER\\Software\\P]\n\"v\"=\"user\"\n[HKEY_LOCAL_MACHINE\\Software\\P]\n\"v\"="
      "\"machine\"\n"
      "[HKEY_LOCAL_MACHINE\\SOFTWARE\\WOW6432Node\\P]\n\"w\"=\"32\"\n[HKCU\\Software\\P]\n\"x\"=\"short\"\n");
  EXPECT_EQ(registry.Read(RegistryHive::CurrentUser, "SOFTWARE\\P", "V"), "user");
  EXPECT_EQ(registry.Read(RegistryHive::LocalMachine, "SOFTWARE\\P", "V"), "machine");
  EXPECT_EQ(registry.Read(RegistryHive::LocalMachine, "SOFTWARE\\P", "w"), std::nullopt);
  EXPECT_EQ(registry.Read(RegistryHive::CurrentUser, "SOFTWARE\\P", "x"), "short");
}

TEST_F(RegistryFileTest, ASettingIsAppendedInTheEncodingOfTheFile) {
  const std::string text = "\r\n[HKEY_LOCAL_MACHINE\\K]\r\n\"v\"=\"ä\"\r\n";
  const std::string files[] = {"REGEDIT4" + codePage.ToAnsi(text), "\xEF\xBB\xBFWindows" + text,
                               Utf16LittleEndian("Windows" + text), Utf16LittleEndian("Windows" + text) + "x",
                               "REGEDIT4" + codePage.ToAnsi(text) + "\"w\"=hex(2):41,\\"};
  for (const std::string& file : files) {
    Write(file);
    registry.Write(RegistryHive::LocalMachine, "Software\\P", "a\"b", "C:\\ö\\");
    EXPECT_EQ(registry.Read(RegistryHive::LocalMachine, "Software\\P", "a\"b"), "C:\\ö\\");
    EXPECT_EQ(registry.Read(RegistryHive::LocalMachine, "K", "v"), "ä") << "what stood there stays";
    EXPECT_TRUE(test::ReadHostFile(folder.Path() / "registry.reg").starts_with(file.substr(0, file.size() - 1)));
  }
}

TEST_F(RegistryFileTest, ASettingMakesAMissingFileAndIsWrittenOnce) {
  for (int i = 0; i < 2; ++i) {
    registry.Write(RegistryHive::CurrentUser, "Software\\P", "v", "x");
    EXPECT_EQ(test::ReadHostFile(folder.Path() / "registry.reg"),
              Utf16LittleEndian("Windows Registry Editor Version 5.00\r\n\r\n\r\n[HKEY_CURRENT_USER\\Software\\P]\r\n"
                                "\"v\"=\"x\"\r\n"));
  }
  registry.Write(RegistryHive::CurrentUser, "Software\\P", "v", "y");
  EXPECT_EQ(registry.Read(RegistryHive::CurrentUser, "Software\\P", "v"), "y");
}

}  // namespace
}  // namespace parvex::posix
