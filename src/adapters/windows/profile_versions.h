#pragma once

#include <optional>
#include <string>

#include "formats/ini/profile_files.h"

namespace parvex::windows {

/// The versions of the system's files: volume, number and size of the file, and when it was written and changed. A file
/// is looked at through a handle of a moment, since a folder may show what a file was before its last writer closed it.
class SystemFileVersions : public ini::ProfileVersions {
 public:
  std::optional<Seen> Look(const std::string& file) override;
};

}  // namespace parvex::windows
