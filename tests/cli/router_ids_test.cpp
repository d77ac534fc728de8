#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "tests/cli/program.h"

// The identifiers of the message router, saved in a machine folder. (That they are read from type libraries is tested
// where those can be read.)

namespace parvex::test {
namespace {

using testing::AllOf;
using testing::HasSubstr;

const std::string kLines =
    "-DPARVEX_ROUTER_CLSID={AAAAAAAA-0000-4000-8000-00000000000A}\n"
    "-DPARVEX_ROUTER_IID={BBBBBBBB-0000-4000-8000-00000000000B}\n";
const std::string kOtherLines =
    "-DPARVEX_ROUTER_CLSID={CCCCCCCC-0000-4000-8000-00000000000C}\r\n"
    "-DPARVEX_ROUTER_IID={DDDDDDDD-0000-4000-8000-00000000000D}\r\n";

class RouterIdsCommand : public testing::Test {
 protected:
  CliMachine machine;
  const std::string lines = machine.Write("ids.txt", kLines);
  const std::string otherLines = machine.Write("others.txt", kOtherLines);
  /// Where doctor finds the identifiers that are in force, with the class.
  std::string InForce() {
    const std::string found = machine.Run({"doctor"}).out;
    const std::size_t at = found.find("class {");
    return found.substr(at, found.find('\n', at) - at);
  }
};

TEST_F(RouterIdsCommand, WhatItHasWrittenIsReadOnEveryPlatform) {
  const Outcome outcome = RunParvex({"router-ids", lines});
  EXPECT_EQ(outcome.status, 0) << outcome.err;
  EXPECT_EQ(outcome.out, kLines);
}

TEST_F(RouterIdsCommand, SavesThemForTheUser) {
  const Outcome outcome = machine.Run({"router-ids", lines, "--save"});
  EXPECT_EQ(outcome.status, 0) << outcome.err;
  EXPECT_EQ(outcome.out,
            "saved in HKEY_CURRENT_USER\\SOFTWARE\\Parvex\\Router:\n"
            "ClassId {AAAAAAAA-0000-4000-8000-00000000000A}\nInterfaceId {BBBBBBBB-0000-4000-8000-00000000000B}\n");
  EXPECT_EQ(InForce(),
            "class {AAAAAAAA-0000-4000-8000-00000000000A}, interface {BBBBBBBB-0000-4000-8000-00000000000B}, from "
            "HKEY_CURRENT_USER\\SOFTWARE\\Parvex\\Router");
}

TEST_F(RouterIdsCommand, SavesThemForAllUsersAndSaysWhenThisOneHasOthers) {
  Outcome outcome = machine.Run({"router-ids", lines, "--save", "--machine-wide"});
  EXPECT_THAT(outcome.out,
              AllOf(HasSubstr("saved in HKEY_LOCAL_MACHINE\\SOFTWARE\\Parvex\\Router:"), Not(HasSubstr("has others"))));
  EXPECT_THAT(InForce(), HasSubstr("class {AAAAAAAA"));
  machine.Run({"router-ids", otherLines, "--save"});
  outcome = machine.Run({"router-ids", lines, "--machine-wide", "--save"});
  EXPECT_EQ(outcome.status, 0);
  EXPECT_THAT(outcome.out, HasSubstr("The current user has others, which stay in force for him: HKEY_CURRENT_USER\\"));
  EXPECT_THAT(InForce(), HasSubstr("class {CCCCCCCC"));
}

TEST_F(RouterIdsCommand, AFileOfAnotherKindIsRefusedHereAndNothingSaved) {
  const Outcome outcome = machine.Run({"router-ids", machine.Write("Router.tlb", "MSFT"), "--save"});
  EXPECT_EQ(outcome.status, 2);
  EXPECT_THAT(outcome.err, AllOf(HasSubstr("Router.tlb"), HasSubstr("on Windows")));
  EXPECT_THAT(InForce(), HasSubstr("from this build"));
}

TEST_F(RouterIdsCommand, ForAllUsersGoesWithSavingOnly) {
  EXPECT_EQ(machine.Run({"router-ids", lines, "--machine-wide"}).status, 2);
  EXPECT_EQ(RunParvex({"router-ids", lines, "--save"}).status, 2) << "which needs a machine";
}

}  // namespace
}  // namespace parvex::test
