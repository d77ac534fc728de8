#include "legacy_standin/standin.h"

#include <gtest/gtest.h>

#include "platform/automation_error.h"
#include "tests/support/fake_platform.h"

namespace parvex::standin {
namespace {

TEST(StandinTest, ItsRouterRefusesEveryRequestWithAnEmptyAnswer) {
  test::FakeMachine machine;
  Standin standin(machine.machine);
  const auto router = standin.Routers().Create();
  std::string answer = "what stood there before";
  EXPECT_FALSE(router->SendRequestMessage("<COMMAND><NAME>getProjectList</NAME></COMMAND>", answer));
  EXPECT_EQ(answer, "");
}

TEST(StandinTest, SettingsThatCannotBeReadAreAnErrorWhenItIsMade) {
  test::FakeMachine machine;
  test::WriteHostFile(machine.folder.Path() / "standin.json", "{");
  EXPECT_THROW(Standin standin(machine.machine), AutomationError);
}

}  // namespace
}  // namespace parvex::standin
