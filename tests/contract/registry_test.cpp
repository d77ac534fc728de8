#include "seams/registry.h"

#include <gtest/gtest.h>

#include "formats/text/text.h"
#include "tests/contract/contract_fixture.h"

namespace parvex::test {
namespace {

class RegistryContract : public testing::Test {
 protected:
  ContractMachine machine;

  std::optional<std::string> Read(std::string_view key, std::string_view name) {
    return machine.registry.LocalMachineString(key, name);
  }
};

TEST_F(RegistryContract, ReadsAStringValue) {
  machine.SetRegistryString("BinPath", "C:\\Korvane\\TQ5-VX\\Bin\\");
  EXPECT_EQ(Read(machine.scratchKey, "BinPath"), "C:\\Korvane\\TQ5-VX\\Bin\\");
}

TEST_F(RegistryContract, LetterCaseOfKeyAndValueNameDoesNotMatter) {
  machine.SetRegistryString("BinPath", "x");
  EXPECT_EQ(Read(ToUpper(machine.scratchKey), "binPath"), "x");
}

TEST_F(RegistryContract, ABackslashAtTheKeysEndDoesNotMatter) {
  machine.SetRegistryString("BinPath", "x");
  EXPECT_EQ(Read(machine.scratchKey + "\\", "BinPath"), "x");
}

TEST_F(RegistryContract, MissingKeysAndValuesGiveNothing) {
  EXPECT_EQ(Read(machine.scratchKey, "BinPath"), std::nullopt);
  machine.SetRegistryString("BinPath", "x");
  EXPECT_EQ(Read(machine.scratchKey, "BinPath2"), std::nullopt);
  EXPECT_EQ(Read(machine.scratchKey + "\\Below", "BinPath"), std::nullopt);
  EXPECT_EQ(Read(machine.scratchKey.substr(0, machine.scratchKey.size() - 1), "BinPath"), std::nullopt);
}

TEST_F(RegistryContract, AnEmptyValueIsAValue) {
  machine.SetRegistryString("BinPath", "");
  EXPECT_EQ(Read(machine.scratchKey, "BinPath"), "");
}

TEST_F(RegistryContract, TextKeepsBlanksQuotesAndLettersOfTheCodePage) {
  machine.SetRegistryString("BinPath", "  C:\\Müller \"&\" Söhne\\ ");
  EXPECT_EQ(Read(machine.scratchKey, "BinPath"), "  C:\\Müller \"&\" Söhne\\ ");
}

TEST_F(RegistryContract, AChangeIsSeenByTheNextCall) {
  machine.SetRegistryString("BinPath", "1");
  EXPECT_EQ(Read(machine.scratchKey, "BinPath"), "1");
  machine.SetRegistryString("BinPath", "2");
  EXPECT_EQ(Read(machine.scratchKey, "BinPath"), "2");
}

}  // namespace
}  // namespace parvex::test
