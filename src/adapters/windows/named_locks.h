#pragma once

#include <memory>
#include <string_view>

#include "seams/machine_locks.h"

namespace parvex::windows {

/// Locks as named mutexes, named after the folder and open to every user and session. One is held by being there: who
/// finds it made by somebody else does not have it, and the system removes it with the last program that has it. Who
/// holds it stands in a file of the folder, which goes with its program, too.
class NamedLocks : public MachineLocks {
 public:
  std::unique_ptr<Lock> TryTake(std::string_view folder, bool waitsForUser, Holder& holder) override;
};

/// A lock for who changes a file (Files::HoldForChange).
std::shared_ptr<void> HoldNamed(std::string_view path);

}  // namespace parvex::windows
