#pragma once

#include <memory>
#include <string_view>

#include "seams/host_system.h"

namespace parvex::posix {

/// HostSystem::MakeReplacement. What lies in /dev or /proc, as the names of standard output do, is written to as it is,
/// behind what stands there; so is any other path to what is neither file nor folder.
std::unique_ptr<HostSystem::Replacement> MakeHostReplacement(std::string_view path, HostSystem::Readers readers);

}  // namespace parvex::posix
