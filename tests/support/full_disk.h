#pragma once

#include <memory>

#include "formats/jet/databases.h"
#include "seams/platform.h"

namespace parvex::test {

/// A machine whose disk becomes full: after `room` more writes each one fails for want of room and leaves what stood
/// there. Files, profile files and databases share the disk; folders and removals need no room.
class FullDisk {
 public:
  FullDisk(const Platform& machine, int room);

  Platform OfMachine() { return platform_; }

 private:
  class FullFiles;
  class FullProfile;

  int room_;
  const std::unique_ptr<Files> files_;
  const std::unique_ptr<PrivateProfile> profile_;
  jet::Databases databases_{*files_};
  Platform platform_;
};

}  // namespace parvex::test
