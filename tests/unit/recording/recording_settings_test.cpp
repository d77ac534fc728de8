#include "recording/recording_settings.h"

#include <gtest/gtest.h>

#include "tests/support/fake_platform.h"
#include "tests/unit/recording/fake_system.h"

namespace parvex::recording {
namespace {

class RecordingSettingsTest : public testing::Test {
 protected:
  void Set(RegistryHive hive, std::string_view name, std::string_view text) { registry.Write(hive, kKey, name, text); }

  test::FakeMachine machine;
  test::FakeSystem system;
  OwnSettings& registry = machine.machine.GetOwnSettings();
};

TEST_F(RecordingSettingsTest, AreOffWhereNobodyNamesAFolder) {
  EXPECT_FALSE(SettingsInForce(system, &registry));
  EXPECT_FALSE(SettingsInForce(system, nullptr));
}

TEST_F(RecordingSettingsTest, ComeFromOptionVariableUserAndMachineInThisOrder) {
  Set(RegistryHive::LocalMachine, kFolderValue, "machine");
  EXPECT_EQ(SettingsInForce(system, &registry)->folder, "machine");
  Set(RegistryHive::CurrentUser, kFolderValue, "user");
  EXPECT_EQ(SettingsInForce(system, &registry)->folder, "user");
  EXPECT_EQ(SettingsInForce(system, &registry)->place, "HKEY_CURRENT_USER\\SOFTWARE\\Parvex\\Recording");
  system.variable = "variable";
  EXPECT_EQ(SettingsInForce(system, &registry)->folder, "variable");
  EXPECT_EQ(SettingsInForce(system, &registry, "option")->folder, "option");
}

TEST_F(RecordingSettingsTest, AnEmptyFolderOfTheUserTurnsTheMachinesOff) {
  Set(RegistryHive::LocalMachine, kFolderValue, "machine");
  SaveFolder(registry, "");
  EXPECT_FALSE(SettingsInForce(system, &registry));
}

TEST_F(RecordingSettingsTest, KeepFiftyCasesOf200MegabytesUnlessToldOtherwise) {
  const auto plain = SettingsInForce(system, &registry, "f");
  EXPECT_EQ(plain->keep, 50u);
  EXPECT_EQ(plain->megabytes, 200u);
  EXPECT_FALSE(plain->onlyFailures);
  Set(RegistryHive::LocalMachine, kKeepValue, "7");
  Set(RegistryHive::CurrentUser, kKeepValue, "seven");
  Set(RegistryHive::CurrentUser, kMegabytesValue, "12");
  Set(RegistryHive::CurrentUser, kOnlyFailuresValue, "1");
  const auto told = SettingsInForce(system, &registry, "f");
  EXPECT_EQ(told->keep, 7u);
  EXPECT_EQ(told->megabytes, 12u);
  EXPECT_TRUE(told->onlyFailures);
}

}  // namespace
}  // namespace parvex::recording
