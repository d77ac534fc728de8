#include "seams/own_settings.h"

#include <gtest/gtest.h>

#include "formats/text/text.h"
#include "tests/contract/contract_fixture.h"

namespace parvex::test {
namespace {

class OwnSettingsContract : public testing::Test {
 protected:
  ContractMachine machine;
  // The registry of either platform keeps them.
  OwnSettings& settings = dynamic_cast<OwnSettings&>(machine.registry);
};

TEST_F(OwnSettingsContract, WhatIsWrittenIsReadHiveByHive) {
  for (const RegistryHive hive : {RegistryHive::CurrentUser, RegistryHive::LocalMachine}) {
    EXPECT_EQ(settings.Read(hive, machine.scratchKey, "Id"), std::nullopt);
    for (const std::string_view text : {"Müller \\ \"&\"", "", "2"}) {
      settings.Write(hive, machine.scratchKey, "Id", text);
      EXPECT_EQ(settings.Read(hive, ToUpper(machine.scratchKey) + "\\", "iD"), text);
    }
    EXPECT_EQ(settings.Read(hive, machine.scratchKey, "Id2"), std::nullopt);
  }
  EXPECT_EQ(machine.registry.LocalMachineString(machine.scratchKey, "Id"), "2") << "it is a value like any other";
  settings.Write(RegistryHive::CurrentUser, machine.scratchKey, "Id", "user's");
  EXPECT_EQ(machine.registry.LocalMachineString(machine.scratchKey, "Id"), "2") << "the user's is not the machine's";
}

}  // namespace
}  // namespace parvex::test
