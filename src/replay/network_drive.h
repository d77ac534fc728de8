#pragma once

#include <string>
#include <string_view>

#include "replay/kept_files.h"

namespace parvex::replay {

/// The files of a network, "\\SERVER\SHARE\a". A machine folder of this system has none: there they stand on a drive
/// that the case has no other use for.
class NetworkDrive {
 public:
  /// None: paths stay as they are.
  NetworkDrive() = default;
  /// The last free letter; none where neither has files of a network.
  NetworkDrive(const KeptFiles& before, const KeptFiles& after);

  /// Where a path of the case stands on the machine.
  std::string Path(std::string_view path) const;
  KeptFiles Moved(KeptFiles files) const;

 private:
  char letter_ = 0;
};

}  // namespace parvex::replay
