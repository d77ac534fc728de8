#include "seams/automation.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "tests/contract/contract_fixture.h"

namespace parvex::test {
namespace {

TEST(AutomationContract, AnUnregisteredIdentifierCannotBeCreatedAndIsNamed) {
  ContractMachine machine;
  for (const char* id : {"Parvex.NoSuchClass", ""}) {
    try {
      machine.automation.Create(id);
      ADD_FAILURE() << "created " << id;
    } catch (const AutomationError& error) {
      EXPECT_EQ(error.Number(), 0x800A01ADu);
      EXPECT_EQ(error.Description(), "no component is registered as \"" + std::string(id) + "\"");
    }
  }
}

}  // namespace
}  // namespace parvex::test
