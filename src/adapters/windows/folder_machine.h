#pragma once

#include <cstdint>
#include <memory>
#include <string>

#include "seams/platform.h"

namespace parvex::windows {

/// The seams of a machine that a folder of this Windows stands for, as a recorded case lays it out: files below drive_c
/// and so on, the registry's values from registry.reg in it as it is when this is made, ini files and databases among
/// the files, and the ANSI code page of the machine that it was. Databases are read and written by the built-in reader,
/// whatever engine this Windows has. Belongs to one thread at a time.
class FolderMachine {
 public:
  /// A folder that does not exist, or a code page that this system does not know, is an AutomationError (76, 5).
  FolderMachine(const std::string& folder, std::uint32_t codePage);
  ~FolderMachine();
  FolderMachine(const FolderMachine&) = delete;
  FolderMachine& operator=(const FolderMachine&) = delete;

  /// Programs, boxes, routers and late-bound objects are null: a folder has none.
  Platform AsPlatform();

 private:
  struct Parts;
  std::unique_ptr<Parts> parts_;
};

}  // namespace parvex::windows
