#pragma once

#include <memory>
#include <string>
#include <string_view>
#include <unordered_map>

#include "adapters/windows/profile_versions.h"
#include "adapters/windows/system_private_profile.h"
#include "formats/ini/profile_files.h"

namespace parvex::windows {

/// The machine's profile files. Files are read and written here; what the system keeps in the registry instead of a
/// file, which its ini file mapping names, and what is no file's name, is the system's own functions'. The mapping is
/// asked once for a name; the system itself looks at it when it starts.
class MachineProfiles : public PrivateProfile {
 public:
  MachineProfiles(Files& files, CodePage& codePage);

  std::unique_ptr<ProfileSection> Section(std::string_view section, std::string_view file) override;
  std::shared_ptr<void> Hold(std::string_view file) override;

 private:
  bool IsMapped(const std::string& file);

  SystemFileVersions versions_;
  ini::ProfileFiles files_;
  SystemPrivateProfile system_;
  std::unordered_map<std::string, bool> mapped_;  // by file
};

/// Whether the system keeps (some of) what a profile file of that name holds in the registry. The system asks for the
/// name without the folder.
bool IsMappedToTheRegistry(std::string_view file);

}  // namespace parvex::windows
