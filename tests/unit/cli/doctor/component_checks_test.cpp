#include "cli/doctor/component_checks.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <memory>

#include "formats/router_ids/router_ids.h"
#include "tests/support/fake_platform.h"
#include "tests/unit/cli/doctor/windows_look.h"

namespace parvex::cli {
namespace {

using State = Finding::State;
using testing::HasSubstr;

constexpr const char* kAskTheOther = "\"C:\\Program Files\\Parvex\\parvex32.exe\" doctor";

/// A 64-bit program on a Windows whose files are a fake machine's.
class ComponentsOnWindows : public testing::Test {
 protected:
  Finding Examine(const std::string& name) {
    const std::unique_ptr<HostSystem> system = ThisSystem();
    const Patient patient = {machine.platform,
                             machine.machine.GetOwnSettings(),
                             *system,
                             look,
                             {"64-bit Windows program", 64, "1252", true},
                             ""};
    const Cures cures(look, true, "parvex.exe");
    const std::vector<Finding> findings = ExamineComponents(patient, cures, true, test::FakeMachine::kBinPath);
    return *std::ranges::find(findings, name, &Finding::name);
  }
  void Expect(const std::string& name, State state, const std::string& detail, const std::string& command = {}) {
    const Finding finding = Examine(name);
    EXPECT_EQ(finding.state, state) << name;
    EXPECT_THAT(finding.detail.Full(), HasSubstr(detail)) << name;
    EXPECT_EQ(finding.command, command) << name;
    EXPECT_EQ(finding.hint.empty(), state == State::Ok) << name;
  }

  test::FakeMachine machine;
  WindowsLook look;
};

TEST_F(ComponentsOnWindows, ThatTheOtherBitnessSeesAreAskedForThere) {
  machine.routers.missing = true;
  look.seenBy32Bit = {{std::string(kSubstituteRouterClass), {"C:\\K\\Router.dll", "4.7.0.1"}},
                      {"KDQU470.CKDBuilder", {"C:\\K\\Builder.dll", "4.7.0.2"}},
                      {"KDRPTSV47.CRemoteInterface", {"C:\\K\\Reports.dll", ""}}};
  Expect("router", State::Failure, "registered for 32-bit programs only: C:\\K\\Router.dll 4.7.0.1", kAskTheOther);
  Expect("builder", State::Failure, "registered for 32-bit programs only: C:\\K\\Builder.dll 4.7.0.2", kAskTheOther);
  Expect("report server", State::Failure, "registered for 32-bit programs only: C:\\K\\Reports.dll", kAskTheOther);
}

TEST_F(ComponentsOnWindows, AreToldWithTheirFiles) {
  machine.routers.answers = {{true, "<PROJECTLIST/>"}, {true, "<PROJECTLIST/>"}};
  look.seen = {{std::string(kSubstituteRouterClass), {"C:\\K\\Router.exe", "4.7.0.1"}},
               {"KDQU470.CKDBuilder", {"C:\\K\\Builder.dll", "4.7.0.2"}},
               {"KDRPTSV47.CRemoteInterface", {"C:\\K\\Reports.dll", ""}},
               {"KDQU470.CKDScheduleRequest", {"C:\\K\\Builder.dll", "4.7.0.2", false}}};
  Expect("router", State::Ok, "answers getProjectList; C:\\K\\Router.exe 4.7.0.1");
  Expect("builder", State::Ok, "KDQU470.CKDBuilder: C:\\K\\Builder.dll 4.7.0.2");
  Expect("report server", State::Failure,
         "KDQU470.CKDScheduleRequest: C:\\K\\Builder.dll 4.7.0.2, which does not exist");
}

TEST_F(ComponentsOnWindows, ThatNobodySeesAreMissing) {
  machine.routers.missing = true;
  Expect("router", State::Failure, "");
  Expect("builder", State::Failure, "no component is registered as \"KDQU470.CKDBuilder\"");
  look.seen = {{"KDRPTSV47.CRemoteInterface", {"C:\\K\\Reports.dll", ""}}};
  Expect("report server", State::Failure, "no component is registered as \"KDQU470.CKDScheduleRequest\"");
}

}  // namespace
}  // namespace parvex::cli
