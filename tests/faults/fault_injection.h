#pragma once

#include <cstddef>
#include <functional>
#include <string>

namespace parvex::test {

// Faults of the system, brought about in this program: allocations that fail, and system calls that change files and
// fail. Nothing fails unless told to.

/// The `at`-th allocation from now on (from 1) fails, and all behind it unless `once`. Of this thread only.
struct AllocationFault {
  std::size_t at;
  bool once;
  std::size_t least = 0;  ///< bytes; smaller allocations do not count
};

/// Runs `work` with that fault. Gives the number of allocations that it asked for.
std::size_t WithAllocationFault(AllocationFault fault, const std::function<void()>& work);

/// What befalls one of the calls that change files: opening for writing, writing, cutting off, changing permissions,
/// forcing to the disk, renaming, linking, removing, making a folder.
struct CallFault {
  enum class Kind { None, Error, ShortWrite, KillBefore, KillAfter };
  Kind kind = Kind::None;
  std::size_t at = 0;  ///< from 1
  int error = 0;       ///< the system's number, for an error
  /// A folder of the host: calls on what is in it count, and no others. All count where it is empty.
  std::string below = {};
};

/// Runs `work` with that fault. A short write takes one byte; the error of a call that is made again stays. Gives the
/// number of calls made. `onCall` is told of each call that succeeded.
std::size_t WithCallFault(CallFault fault, const std::function<void()>& work, const std::function<void()>& onCall = {});

/// While one lives nothing fails and nothing is counted: for what other programs do.
class FaultsSuspended {
 public:
  FaultsSuspended();
  ~FaultsSuspended();
  FaultsSuspended(const FaultsSuspended&) = delete;
  FaultsSuspended& operator=(const FaultsSuspended&) = delete;
};

}  // namespace parvex::test
