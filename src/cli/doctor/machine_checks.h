#pragma once

#include <vector>

#include "cli/doctor/finding.h"
#include "cli/doctor/patient.h"

namespace parvex::cli {

/// Looks at everything that commands need of a machine: program, registry, folders and the right to write there, files,
/// the legacy application's components, databases. The router is asked for the list of projects, the lock of the
/// hand-over files tried, and a file written and removed in folders that commands write to; nothing else is changed,
/// and nothing started that opens a window. Never throws for what is wrong with the machine.
std::vector<Finding> ExamineMachine(const Patient& patient);

}  // namespace parvex::cli
