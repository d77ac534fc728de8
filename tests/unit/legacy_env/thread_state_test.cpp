#include "legacy_env/thread_state.h"

#include <gtest/gtest.h>

#include <thread>

namespace parvex {
namespace {

void FillThisThread() {
  ThisThread() = {"C:\\K\\Bin\\", "C:\\K", ThreadState::IniTarget{"Section", "C:\\file.ini"}, 7};
}

void ExpectNew(const ThreadState& state) {
  EXPECT_EQ(state.binPath, "");
  EXPECT_EQ(state.dataRoot, "");
  EXPECT_FALSE(state.iniTarget);
  EXPECT_EQ(state.unstoredTagCount, 0u);
}

TEST(ThreadState, AForgottenThreadIsLikeANewOne) {
  FillThisThread();
  ForgetThisThread();
  ExpectNew(ThisThread());
}

TEST(ThreadState, ANewThreadKnowsNothingOfAnotherAndTakesNothingFromIt) {
  FillThisThread();
  std::thread([] {
    ExpectNew(ThisThread());
    ForgetThisThread();
  }).join();
  EXPECT_EQ(ThisThread().binPath, "C:\\K\\Bin\\");
  EXPECT_EQ(ThisThread().unstoredTagCount, 7u);
  ForgetThisThread();
}

}  // namespace
}  // namespace parvex
