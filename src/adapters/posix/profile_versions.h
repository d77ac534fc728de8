#pragma once

#include <filesystem>
#include <optional>
#include <string>
#include <unordered_map>

#include "adapters/posix/machine_folder.h"
#include "formats/ini/profile_files.h"

namespace parvex::posix {

/// The versions of a machine folder's files. Belongs to one thread at a time.
class HostFileVersions : public ini::ProfileVersions {
 public:
  explicit HostFileVersions(MachineFolder& folder) : folder_(folder) {}

  std::optional<Seen> Look(const std::string& file) override;

 private:
  MachineFolder& folder_;
  std::unordered_map<std::string, std::filesystem::path> hosts_;  // where the files asked for last were found
};

}  // namespace parvex::posix
