#include "legacy_env/hand_over_lock.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <optional>

#include "legacy_env/thread_state.h"
#include "seams/automation_error.h"
#include "tests/support/fake_platform.h"
#include "tests/support/recorded_progress.h"

namespace parvex::test {
namespace {

using testing::HasSubstr;

class FakeLocks : public MachineLocks {
 public:
  int refusals = 0;
  Holder held{4711, "C:\\Host\\front.exe", false};
  std::optional<bool> toldOfUser;

  std::unique_ptr<Lock> TryTake(std::string_view, bool waitsForUser, Holder& holder) override {
    toldOfUser = waitsForUser;
    if (refusals-- > 0) {
      holder = held;
      return nullptr;
    }
    return std::make_unique<Lock>();
  }
};

class HandOver : public testing::Test {
 protected:
  FakeMachine machine;
  FakeLocks locks;
  const std::string folder = "C:\\Korvane\\TQ5-VX\\Temp";
  HandOver() { machine.platform.locks = &locks; }

  std::optional<AutomationError> Refused(HandOverLock::Run run = HandOverLock::Run::Alone) {
    try {
      const HandOverLock alone(machine.platform, folder, run);
    } catch (const AutomationError& error) {
      return error;
    }
    return std::nullopt;
  }
};

TEST_F(HandOver, AnotherRunIsWaitedForWhileMessagesArePumped) {
  locks.refusals = 300;
  EXPECT_FALSE(Refused());
  EXPECT_EQ(machine.pump.now, std::chrono::seconds(30));
  EXPECT_EQ(machine.pump.pumped, 300);
}

TEST_F(HandOver, AfterHalfAMinuteTheProcessThatHoldsThemIsNamed) {
  locks.refusals = 301;
  const auto refused = Refused();
  ASSERT_TRUE(refused);
  EXPECT_EQ(refused->Number(), 0x800A0046u);
  EXPECT_EQ(refused->Description(),
            "cannot use the hand-over files in \"C:\\Korvane\\TQ5-VX\\Temp\": process 4711 "
            "(C:\\Host\\front.exe) holds them, and has not let go for 30 s");
}

TEST_F(HandOver, TheMachinesProgressIsToldWhoIsWaitedForAndWhenItIsOver) {
  RecordedProgress progress;
  machine.platform.progress = &progress;
  locks.refusals = 1;
  EXPECT_FALSE(Refused());
  const std::string waits = "waits: process 4711 (C:\\Host\\front.exe) is using the hand-over files";
  EXPECT_THAT(progress.told, testing::ElementsAre(waits, "has waited"));
  progress.told.clear();
  locks.refusals = 301;
  EXPECT_TRUE(Refused());
  EXPECT_EQ(progress.told.size(), 301u);
  EXPECT_EQ(progress.told.back(), "has waited");
}

TEST_F(HandOver, WhoNeedNotWaitTellsNoProgress) {
  RecordedProgress progress;
  machine.platform.progress = &progress;
  EXPECT_FALSE(Refused());
  EXPECT_THAT(progress.told, testing::IsEmpty());
}

TEST_F(HandOver, ARunWithWindowsIsNotWaitedFor) {
  locks.refusals = 1;
  locks.held.waitsForUser = true;
  const auto refused = Refused();
  ASSERT_TRUE(refused);
  EXPECT_EQ(refused->Number(), 0x800A0046u);
  EXPECT_THAT(refused->Description(),
              HasSubstr("process 4711 (C:\\Host\\front.exe) holds them and waits for its user"));
  EXPECT_EQ(machine.pump.pumped, 0);
}

TEST_F(HandOver, AHolderThatSaysNothingIsAnotherProcess) {
  locks.refusals = 301;
  locks.held = {};
  EXPECT_THAT(Refused()->Description(), HasSubstr("another process holds them"));
}

TEST_F(HandOver, OthersAreToldWhetherAUserIsWaitedFor) {
  EXPECT_FALSE(Refused());
  EXPECT_EQ(locks.toldOfUser, false);
  EXPECT_FALSE(Refused(HandOverLock::Run::WithWindows));
  EXPECT_EQ(locks.toldOfUser, true);
}

TEST_F(HandOver, ACallInACallOfItsThreadIsRefusedAtOnce) {
  const HandOverLock outer(machine.platform, folder, HandOverLock::Run::Alone);
  const auto refused = Refused();
  ASSERT_TRUE(refused);
  EXPECT_EQ(refused->Number(), 0x800A0046u);
  EXPECT_THAT(refused->Description(), HasSubstr("a call of this thread holds them"));
  EXPECT_EQ(machine.pump.pumped, 0);
}

TEST_F(HandOver, ARefusedCallLeavesTheOuterOneItsHold) {
  const HandOverLock outer(machine.platform, folder, HandOverLock::Run::Alone);
  EXPECT_TRUE(Refused());
  EXPECT_TRUE(Refused());
}

TEST_F(HandOver, WhoWasRefusedHoldsNothing) {
  locks.refusals = 301;
  EXPECT_TRUE(Refused());
  EXPECT_FALSE(ThisThread().holdsHandOver);
  EXPECT_FALSE(Refused());
}

// A message that is pumped while a call waits for the lock may carry an export of its own: it waits its own time.
TEST_F(HandOver, ACallThatComesWhileAnotherWaitsForTheLockMayHaveIt) {
  locks.refusals = 1;
  EXPECT_FALSE(Refused());
  EXPECT_FALSE(ThisThread().holdsHandOver);
}

}  // namespace
}  // namespace parvex::test
