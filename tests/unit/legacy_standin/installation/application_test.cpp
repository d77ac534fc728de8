#include "legacy_standin/installation/application.h"

#include <gtest/gtest.h>

#include "seams/automation_error.h"
#include "tests/support/fake_platform.h"

namespace parvex::standin {
namespace {

class ApplicationTest : public ::testing::Test {
 protected:
  std::string Root() const {
    return Application{*machine.platform.registry,
                       *machine.platform.files,
                       *machine.platform.projectDatabases,
                       *machine.platform.codePage,
                       {}}
        .Root();
  }
  test::FakeMachine machine;
};

TEST_F(ApplicationTest, ItsRootIsTheFolderAboveTheProgramFolder) {
  EXPECT_EQ(Root(), test::FakeMachine::kRoot);
  machine.SetBinPath("C:\\Korvane\\TQ5-VX\\Bin");
  EXPECT_EQ(Root(), test::FakeMachine::kRoot);
}

TEST_F(ApplicationTest, WithoutItsRegistryValueItHasNoRoot) {
  machine.SetBinPath("");
  EXPECT_THROW(Root(), AutomationError);
}

}  // namespace
}  // namespace parvex::standin
