#include <gtest/gtest.h>
#include <windows.h>

#include <string>

#include "adapters/windows/machine_profiles.h"
#include "tests/contract/contract_fixture.h"

// Names under the system's ini file mapping stay with the system's functions.

namespace parvex::test {
namespace {

const std::wstring kMapping = L"SOFTWARE\\Microsoft\\Windows NT\\CurrentVersion\\IniFileMapping\\parvextest.ini";

// An empty key: the name is mapped, and none of its sections are, so that the system keeps to the file.
class MappedProfiles : public testing::Test {
 protected:
  void SetUp() override {
    HKEY key = nullptr;
    if (RegCreateKeyExW(HKEY_LOCAL_MACHINE, kMapping.c_str(), 0, nullptr, REG_OPTION_VOLATILE,
                        KEY_ALL_ACCESS | KEY_WOW64_64KEY, nullptr, &key, nullptr) != ERROR_SUCCESS) {
      GTEST_SKIP() << "the mapping cannot be changed by this user";
    }
    RegCloseKey(key);
  }
  void TearDown() override { RegDeleteKeyExW(HKEY_LOCAL_MACHINE, kMapping.c_str(), KEY_WOW64_64KEY, 0); }

  // What a section reads that was made before the file changed: the system reads anew each time, we do not.
  std::string ReadBehindAChange(const std::string& name) {
    const std::string file = machine.Path(name);
    machine.files.Replace(file, "[s]\r\nk=1\r\n");
    const auto section = machine.privateProfile.Section("s", file);
    EXPECT_EQ(section->ReadString("k", "-", 255), "1");
    machine.files.Replace(file, "[s]\r\nk=22\r\n");
    return section->ReadString("k", "-", 255);
  }

  ContractMachine machine;
};

TEST_F(MappedProfiles, AreTheSystems) {
  EXPECT_TRUE(windows::IsMappedToTheRegistry("C:\\some\\ParvexTest.ini"));
  EXPECT_TRUE(windows::IsMappedToTheRegistry("parvextest.ini"));
  EXPECT_EQ(ReadBehindAChange("parvextest.ini"), "22");
}

TEST_F(MappedProfiles, OthersAreRead) {
  EXPECT_FALSE(windows::IsMappedToTheRegistry("C:\\parvextest.ini\\other.ini"));
  EXPECT_FALSE(windows::IsMappedToTheRegistry("C:\\parvextest.ini\\"));
  EXPECT_FALSE(windows::IsMappedToTheRegistry(""));
  EXPECT_EQ(ReadBehindAChange("other.ini"), "1");
}

}  // namespace
}  // namespace parvex::test
