#pragma once

#include <map>
#include <string>
#include <vector>

#include "recording/recorded_case.h"
#include "seams/host_system.h"

namespace parvex::recording {

/// What a case holds, as it lies there.
struct CaseMembers {
  bool isFinished = true;                  ///< an archive, not a folder
  std::map<std::string, std::string> own;  ///< case.json and so on, by name
  std::vector<KeptFile> files;             ///< everything in folders
};

/// Reads it with bounds of size, and no link of a folder is followed. Errors as of ReadCase.
CaseMembers ReadMembers(HostSystem& system, const std::string& path);

/// Refuses a case; `reason` is read behind "it is refused: ".
[[noreturn]] void RefuseCase(const std::string& path, const std::string& reason);

}  // namespace parvex::recording
