#pragma once

#include <filesystem>
#include <memory>
#include <string_view>

#include "adapters/posix/machine_folder.h"
#include "seams/machine_locks.h"

namespace parvex::posix {

/// Locks as a file in the folder that is locked by the system, and holds who has it. Who lets go removes the file; one
/// that a killed program left is nobody's.
class FolderLocks : public MachineLocks {
 public:
  explicit FolderLocks(MachineFolder& folder) : folder_(folder) {}

  std::unique_ptr<Lock> TryTake(std::string_view folder, bool waitsForUser, Holder& holder) override;

 private:
  MachineFolder& folder_;
};

/// A lock of a folder for who changes a file in it (Files::HoldForChange). Nothing is left behind.
std::shared_ptr<void> HoldHostFolder(const std::filesystem::path& folder, std::string_view shownPath);

}  // namespace parvex::posix
