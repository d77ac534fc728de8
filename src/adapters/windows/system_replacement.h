#pragma once

#include <memory>
#include <string_view>

#include "seams/host_system.h"

namespace parvex::windows {

/// HostSystem::MakeReplacement. Pipes and devices are the names of devices (NUL, CON) and paths that begin with "\\.\".
std::unique_ptr<HostSystem::Replacement> MakeSystemReplacement(std::string_view path);

}  // namespace parvex::windows
