#pragma once

#include <memory>
#include <string>

#include "seams/platform.h"

namespace parvex {

/// The legacy application hands selections over through files in its temporary folder, which every run on the machine
/// shares. Who uses them holds this lock of the machine from his first writing to his last reading.
///
/// While another run holds it, messages are pumped and the lock is tried again, for 30 s at most. A run with windows is
/// not waited for, since its user may take hours, nor is a call of this thread that waits itself and let the message in
/// which this one comes. Who does not get it ends with "permission denied" (70), which names the process that has it.
class HandOverLock {
 public:
  enum class Run { Alone, WithWindows };
  /// `folder` is the temporary folder.
  HandOverLock(const Platform& platform, const std::string& folder, Run run);
  ~HandOverLock();
  HandOverLock(const HandOverLock&) = delete;
  HandOverLock& operator=(const HandOverLock&) = delete;

 private:
  std::unique_ptr<MachineLocks::Lock> lock_;
};

/// How a holder is told of: "process 12 (C:\Host\host.exe)", or "another process" when he did not tell.
std::string NameOf(const MachineLocks::Holder& holder);

}  // namespace parvex
