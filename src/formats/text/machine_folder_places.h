#pragma once

#include <optional>
#include <string>
#include <string_view>

namespace parvex {

/// Where a file of a machine stands in a folder that stands for the machine, with "/" between the names and below the
/// folder whatever the path says: "drive_c/Korvane/a.ini" for "C:\Korvane\a.ini"; a path without a drive begins at C:\,
/// one of a network at "unc/". Nothing for a path that no file can have.
std::optional<std::string> PlaceInMachineFolder(std::string_view path);

}  // namespace parvex
