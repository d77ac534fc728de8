#pragma once

#include <string>
#include <vector>

#include "cli/doctor/cures.h"
#include "cli/doctor/finding.h"
#include "cli/doctor/patient.h"

namespace parvex::cli {

/// Router identifiers, router, builder, report server and database engine. The router is created and asked for the list
/// of projects, as each host's first call does; builder and report server, which may open windows, are looked up only.
/// `isFolderKnown` says that the program folder is known.
std::vector<Finding> ExamineComponents(const Patient& patient, const Cures& cures, bool isFolderKnown,
                                       const std::string& binPath);

}  // namespace parvex::cli
