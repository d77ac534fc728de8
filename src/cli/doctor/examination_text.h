#pragma once

#include <string>
#include <vector>

#include "cli/doctor/finding.h"
#include "cli/host/machine_look.h"

namespace parvex::cli {

/// "ok", "warning", "failure" or "unchecked".
std::string NameOf(Finding::State state);

std::size_t CountOf(const std::vector<Finding>& findings, Finding::State state);

/// For the user: each check with what was found, what can be done and the command that does it.
std::string AsTable(const std::vector<Finding>& findings, bool takesColours);

/// For others: what was found, without what tells of people, computers, projects and customers.
std::string AsReport(const std::vector<Finding>& findings, const std::vector<MachineLook::PrivateFolder>& folders);

}  // namespace parvex::cli
