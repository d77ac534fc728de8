#pragma once

#include <cstdint>
#include <optional>
#include <string>

namespace parvex {

/// What the legacy protocol keeps from one call to the next: each thread has its own, which nothing in the protocol
/// ever resets, and which ends with the thread. Everything else is read afresh by each call.
struct ThreadState {
  /// The program folder as the first look at the registry gave it, also a failed one; empty before. See GetBinPath.
  std::string binPath;
  /// The folder of the legacy application's data; empty until it was found. See GetDataRoot.
  std::string dataRoot;

  struct IniTarget {
    std::string section;
    std::string fileName;
  };
  /// The section that ini access goes to; null before the first SetIniTarget.
  std::optional<IniTarget> iniTarget;

  /// How many tags without stored data were numbered, in all exports together. See ReadTagStoredData.
  std::uint32_t unstoredTagCount = 0;

  /// Whether a call of this thread uses the hand-over files; see HandOverLock.
  bool holdsHandOver = false;
};

/// This thread's state. The reference is good for the thread's life.
ThreadState& ThisThread();

/// Makes this thread one that has not called yet. For a thread that turns to another machine, as tests do; the
/// component never does.
void ForgetThisThread();

}  // namespace parvex
