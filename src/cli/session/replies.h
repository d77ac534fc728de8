#pragma once

#include <optional>
#include <string>

#include "seams/automation_error.h"

namespace parvex::cli {

/// The message of a reply that says that its command failed; nothing for every other reply. Cheap for a document of any
/// size: only what begins as a reply envelope is read.
std::optional<std::string> FailureIn(const std::string& reply);

/// Tells an error on standard error: what it happened to (unless empty), number in hex, source, description.
void ReportError(const std::string& subject, const AutomationError& error);

}  // namespace parvex::cli
