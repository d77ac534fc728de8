#pragma once

#include "seams/private_profile.h"

namespace parvex::windows {

/// The system's private-profile functions.
class SystemPrivateProfile : public PrivateProfile {
 public:
  std::unique_ptr<ProfileSection> Section(std::string_view section, std::string_view file) override;
};

}  // namespace parvex::windows
