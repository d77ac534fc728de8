#include "seams/machine_locks.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <atomic>
#include <thread>

#include "tests/contract/contract_fixture.h"

namespace parvex::test {
namespace {

class MachineLocksContract : public testing::Test {
 protected:
  ContractMachine machine;
  MachineLocks::Holder holder;

  std::unique_ptr<MachineLocks::Lock> Take(const std::string& folder, bool waitsForUser = false) {
    return machine.locks.TryTake(folder, waitsForUser, holder);
  }
};

TEST_F(MachineLocksContract, OneHasALockAndTheNextIsToldWhoHasIt) {
  auto first = Take(machine.scratch);
  ASSERT_NE(first, nullptr);
  EXPECT_EQ(Take(machine.scratch), nullptr);
  EXPECT_NE(holder.processId, 0u);
  EXPECT_THAT(holder.program, testing::HasSubstr("contract"));
  EXPECT_FALSE(holder.waitsForUser);
  first.reset();
  EXPECT_NE(Take(machine.scratch), nullptr);
}

TEST_F(MachineLocksContract, TheNextIsToldThatAUserIsWaitedFor) {
  const auto first = Take(machine.scratch, true);
  EXPECT_EQ(Take(machine.scratch), nullptr);
  EXPECT_TRUE(holder.waitsForUser);
}

TEST_F(MachineLocksContract, AFolderIsOneInEveryLetterCaseAndWithAFinalBackslash) {
  machine.files.CreateFolder(machine.Path("Temp"));
  const auto first = Take(machine.Path("Temp"));
  EXPECT_EQ(Take(machine.Path("TEMP")), nullptr);
  EXPECT_EQ(Take(machine.Path("Temp\\")), nullptr);
}

TEST_F(MachineLocksContract, TwoFoldersHaveTwoLocks) {
  machine.files.CreateFolder(machine.Path("a"));
  machine.files.CreateFolder(machine.Path("b"));
  const auto first = Take(machine.Path("a"));
  EXPECT_NE(Take(machine.Path("b")), nullptr);
}

TEST_F(MachineLocksContract, AFolderThatDoesNotExistHasNothingToShare) {
  const auto first = Take(machine.Path("none"));
  EXPECT_NE(first, nullptr);
  EXPECT_NE(Take(machine.Path("none")), nullptr);
}

TEST_F(MachineLocksContract, NothingIsLeftInTheFolder) {
  Take(machine.scratch).reset();
  EXPECT_THAT(machine.files.ListFiles(machine.Path("*.*")), testing::IsEmpty());
}

TEST_F(MachineLocksContract, WhoChangesAFileIsAloneAndTheOthersWait) {
  const std::string path = machine.Path("options.xml");
  std::atomic<bool> isOver = false;
  auto mine = machine.files.HoldForChange(path);
  ASSERT_NE(mine, nullptr);
  EXPECT_EQ(machine.files.HoldForChange(path), mine) << "a thread may ask again";
  std::thread other([&] {
    const auto theirs = machine.files.HoldForChange(path);
    EXPECT_TRUE(isOver);
  });
  std::this_thread::sleep_for(std::chrono::milliseconds(100));
  isOver = true;
  mine.reset();
  other.join();
  EXPECT_NE(machine.files.HoldForChange(path), nullptr);
}

}  // namespace
}  // namespace parvex::test
