#pragma once

#include <cstdint>

#include "recording/recording_settings.h"
#include "seams/host_system.h"

namespace parvex::recording {

/// As settings count them.
inline constexpr std::uint64_t kMegabyte = 1'000'000;

/// Removes the oldest cases of the folder while it holds more than are to be kept, finished ones and those whose host
/// died; what a program is recording at the moment stays, and the newest case always. Other files are nobody's
/// business. Several programs may do this at a time. Never throws.
void RemoveOldCases(HostSystem& system, const Settings& settings) noexcept;

}  // namespace parvex::recording
