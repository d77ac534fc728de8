#include "platform/posix/private_profile.h"

#include "platform/automation_error.h"

namespace parvex::posix {

ProfileFiles::ProfileFiles(MachineFolder&, CodePage&) {}

std::unique_ptr<ProfileSection> ProfileFiles::Section(std::string_view, std::string_view file) {
  throw MakeRuntimeError(RuntimeError::InvalidCall, "ini files are not available yet: " + std::string(file));
}

}  // namespace parvex::posix
