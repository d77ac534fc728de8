#pragma once

#include <string>
#include <string_view>
#include <vector>

namespace parvex::recording {

/// The temporary folders through which the legacy application's programs take and leave files, by the program folder:
/// the one beside it, and the design application's. They are one folder in a usual installation, and then one entry.
std::vector<std::string> HandOverFolders(std::string_view binPath);

}  // namespace parvex::recording
