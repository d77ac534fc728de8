#pragma once

#include <string>
#include <vector>

#include "cli/doctor/cures.h"
#include "cli/doctor/finding.h"
#include "cli/doctor/patient.h"

namespace parvex::cli {

/// The registry value that names the program folder, which becomes `binPath`.
Finding ExamineRegistryValue(const Patient& patient, const Cures& cures, std::string& binPath);

/// The folders and files of the installation whose program folder this is, and whether somebody holds the hand-over
/// files.
std::vector<Finding> ExamineInstallation(const Patient& patient, const Cures& cures, const std::string& binPath);

}  // namespace parvex::cli
