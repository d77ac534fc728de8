#pragma once

#include "platform/code_page.h"
#include "platform/posix/machine_folder.h"
#include "platform/private_profile.h"

namespace parvex::posix {

/// Private profile files of a machine folder.
class ProfileFiles : public PrivateProfile {
 public:
  ProfileFiles(MachineFolder& folder, CodePage& codePage);

  std::unique_ptr<ProfileSection> Section(std::string_view section, std::string_view file) override;
};

}  // namespace parvex::posix
