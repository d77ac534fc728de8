#include "legacy_env/hand_over_lock.h"

#include <chrono>
#include <string>

#include "legacy_env/thread_state.h"
#include "legacy_env/told_wait.h"
#include "seams/automation_error.h"

namespace parvex {
namespace {

constexpr std::chrono::milliseconds kLockPollInterval{100};
constexpr int kMostPolls = 300;

AutomationError Refusal(const std::string& folder, const std::string& why) {
  return MakeRuntimeError(RuntimeError::PermissionDenied,
                          FailureText("cannot use the hand-over files in", folder, why));
}

std::unique_ptr<MachineLocks::Lock> Take(const Platform& platform, const std::string& folder, bool waitsForUser) {
  ToldWait wait(platform.progress);
  for (int polls = 0;; ++polls) {
    MachineLocks::Holder holder;
    if (auto lock = platform.locks->TryTake(folder, waitsForUser, holder)) {
      return lock;
    }
    if (holder.waitsForUser) {
      throw Refusal(folder, NameOf(holder) + " holds them and waits for its user");
    }
    if (polls == kMostPolls) {
      throw Refusal(folder, NameOf(holder) + " holds them, and has not let go for 30 s");
    }
    wait.GoesOn(NameOf(holder) + " is using the hand-over files");
    platform.messagePump->RunPending();
    platform.messagePump->Sleep(kLockPollInterval);
  }
}

}  // namespace

std::string NameOf(const MachineLocks::Holder& holder) {
  if (holder.processId == 0) {
    return "another process";
  }
  const std::string number = "process " + std::to_string(holder.processId);
  return holder.program.empty() ? number : number + " (" + holder.program + ")";
}

HandOverLock::HandOverLock(const Platform& platform, const std::string& folder, Run run) {
  if (ThisThread().holdsHandOver) {
    throw Refusal(folder, "a call of this thread holds them, and waits until this one is over");
  }
  lock_ = Take(platform, folder, run == Run::WithWindows);
  ThisThread().holdsHandOver = true;
}

HandOverLock::~HandOverLock() { ThisThread().holdsHandOver = false; }

}  // namespace parvex
