#pragma once

#include <string>
#include <vector>

#include "cli/doctor/finding.h"
#include "cli/doctor/patient.h"

namespace parvex::cli {

/// The facts about the machine and the checks, as docs/program.md describes the members.
std::string AsJson(const Patient& patient, const std::vector<Finding>& findings);

}  // namespace parvex::cli
