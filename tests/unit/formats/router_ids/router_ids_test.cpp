#include "formats/router_ids/router_ids.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <map>

#include "tests/support/raised_by.h"

namespace parvex {
namespace {

using testing::AllOf;
using testing::HasSubstr;
using testing::Not;

const std::string kA = "{AAAAAAAA-0000-4000-8000-00000000000a}";
const std::string kB = "{BBBBBBBB-0000-4000-8000-00000000000b}";
const std::string kC = "{CCCCCCCC-0000-4000-8000-00000000000c}";
const std::string kD = "{DDDDDDDD-0000-4000-8000-00000000000d}";
const RouterIds kBuiltIn = {kC, kD};

/// Settings with these values of one key.
class RouterKey : public OwnSettings {
 public:
  std::map<std::pair<RegistryHive, std::string>, std::string> values;

  std::optional<std::string> Read(RegistryHive hive, std::string_view key, std::string_view name) override {
    EXPECT_EQ(key, "SOFTWARE\\Parvex\\Router");
    const auto found = values.find({hive, std::string(name)});
    return found == values.end() ? std::nullopt : std::optional(found->second);
  }
  void Write(RegistryHive hive, std::string_view key, std::string_view name, std::string_view text) override {
    EXPECT_EQ(key, "SOFTWARE\\Parvex\\Router");
    values[{hive, std::string(name)}] = text;
  }
};

class RouterIdsTest : public testing::Test {
 protected:
  RouterKey registry;

  void Set(RegistryHive hive, const std::string& classId, const std::string& interfaceId) {
    registry.values[{hive, "ClassId"}] = classId;
    registry.values[{hive, "InterfaceId"}] = interfaceId;
  }
  /// The number and the description of the error that looking for them raises.
  std::string Refused() {
    return test::ErrorIn([&] { RouterIdsInForce(registry, kBuiltIn); });
  }
};

TEST_F(RouterIdsTest, WithoutAnyInTheRegistryThoseOfTheBuildAreInForce) {
  const FoundRouterIds found = RouterIdsInForce(registry, kBuiltIn);
  EXPECT_EQ(found.ids, kBuiltIn);
  EXPECT_EQ(found.place, "this build");
}

TEST_F(RouterIdsTest, TheMachinesAreInForceBeforeThoseOfTheBuild) {
  Set(RegistryHive::LocalMachine, kA, kB);
  const FoundRouterIds found = RouterIdsInForce(registry, kBuiltIn);
  EXPECT_EQ(found.ids, (RouterIds{kA, kB}));
  EXPECT_EQ(found.place, "HKEY_LOCAL_MACHINE\\SOFTWARE\\Parvex\\Router");
}

TEST_F(RouterIdsTest, TheUsersAreInForceBeforeTheMachines) {
  Set(RegistryHive::LocalMachine, kC, kD);
  Set(RegistryHive::CurrentUser, kA, kB);
  const FoundRouterIds found = RouterIdsInForce(registry, kBuiltIn);
  EXPECT_EQ(found.ids, (RouterIds{kA, kB}));
  EXPECT_EQ(found.place, "HKEY_CURRENT_USER\\SOFTWARE\\Parvex\\Router");
}

TEST_F(RouterIdsTest, HalfAPairIsRefusedAndNeverCompletedFromElsewhere) {
  Set(RegistryHive::LocalMachine, kA, kB);
  for (const auto& [there, missing] : {std::pair("ClassId", "InterfaceId"), std::pair("InterfaceId", "ClassId")}) {
    registry.values.erase({RegistryHive::CurrentUser, missing});
    registry.values[{RegistryHive::CurrentUser, there}] = kA;
    EXPECT_EQ(Refused(), "429 the message router cannot be found: " + std::string(missing) +
                             " of HKEY_CURRENT_USER\\SOFTWARE\\Parvex\\Router is missing beside " + there);
  }
}

TEST_F(RouterIdsTest, WhatIsNoIdentifierIsRefusedByValueAndPlace) {
  for (const std::string& text :
       {std::string(), kA.substr(1, 36), kA + " ", "{" + std::string(36, '0') + "}", kA.substr(0, 37) + ")",
        std::string("{AAAAAAAA-0000-4000-8000-00000000000G}"), std::string("KDQU470.MessageRouter")}) {
    Set(RegistryHive::LocalMachine, kA, text);
    EXPECT_EQ(Refused(),
              "429 the message router cannot be found: InterfaceId of HKEY_LOCAL_MACHINE\\SOFTWARE\\Parvex\\Router is "
              "no identifier in braces: \"" +
                  text + "\"");
    Set(RegistryHive::LocalMachine, text, kB);
    EXPECT_THAT(Refused(), HasSubstr(": ClassId of HKEY_LOCAL_MACHINE")) << text;
  }
}

TEST_F(RouterIdsTest, AValueTooLongToBeRepeatedIsToldByItsLength) {
  Set(RegistryHive::CurrentUser, std::string(70000, 'x'), kB);
  EXPECT_THAT(Refused(), AllOf(HasSubstr("70000 bytes of text"), Not(HasSubstr("xxx"))));
}

TEST_F(RouterIdsTest, IdentifiersOfABuildThatAreNoneAreRefusedToo) {
  EXPECT_THAT(test::ErrorIn([&] {
                RouterIdsInForce(registry, {kA, "none"});
              }),
              HasSubstr("429 the message router cannot be found: InterfaceId of this build is no identifier"));
}

TEST_F(RouterIdsTest, SavedOnesAreInForceFromThenOn) {
  EXPECT_EQ(SaveRouterIds(registry, RegistryHive::LocalMachine, {kA, kB}),
            "HKEY_LOCAL_MACHINE\\SOFTWARE\\Parvex\\Router");
  EXPECT_EQ(RouterIdsInForce(registry, kBuiltIn).ids, (RouterIds{kA, kB}));
  EXPECT_EQ(SaveRouterIds(registry, RegistryHive::CurrentUser, {kC, kD}),
            "HKEY_CURRENT_USER\\SOFTWARE\\Parvex\\Router");
  EXPECT_EQ(RouterIdsInForce(registry, kBuiltIn).ids, (RouterIds{kC, kD}));
}

TEST_F(RouterIdsTest, ThoseOfAPlainBuildAreTheSubstitutes) {
  EXPECT_TRUE(AreSubstitutes(RouterIdsInForce(registry).ids));
}

TEST(SubstituteRouterIds, AreRecognisedInEveryLetterCaseAndOnlyAsAPair) {
  EXPECT_TRUE(AreSubstitutes({"{196aaac4-3b30-44cd-bf13-4c212b3bcd3d}", "{e3b59d45-e9f2-4852-95e0-c034fe2b0a22}"}));
  EXPECT_FALSE(AreSubstitutes({std::string(kSubstituteRouterClass), kB}));
  EXPECT_FALSE(AreSubstitutes({kA, std::string(kSubstituteRouterInterface)}));
}

TEST(LinesOfRouterIds, AreReadAsTheyAreWritten) {
  EXPECT_EQ(AsLines({kA, kB}), "-DPARVEX_ROUTER_CLSID=" + kA + "\n-DPARVEX_ROUTER_IID=" + kB + "\n");
  EXPECT_EQ(FromLines(AsLines({kA, kB})), (RouterIds{kA, kB}));
  EXPECT_EQ(FromLines("-DPARVEX_ROUTER_CLSID=" + kA + "\r\n-DPARVEX_ROUTER_IID=" + kB), (RouterIds{kA, kB}));
}

TEST(LinesOfRouterIds, AnythingElseIsNone) {
  const std::string lines = AsLines({kA, kB});
  for (std::size_t size = 0; size < lines.size() - 1; ++size) {
    EXPECT_EQ(FromLines(std::string_view(lines).substr(0, size)), std::nullopt) << size;
  }
  EXPECT_EQ(FromLines(lines + "\n"), std::nullopt);
  EXPECT_EQ(FromLines(" " + lines), std::nullopt);
  EXPECT_EQ(FromLines("-DPARVEX_ROUTER_CLSID=" + kA + kB + "\n-DPARVEX_ROUTER_IID=" + kB), std::nullopt);
  EXPECT_EQ(FromLines("MSFT"), std::nullopt);
}

}  // namespace
}  // namespace parvex
