#pragma once

#include "cli/host/exit_status.h"
#include "cli/session/session.h"

namespace parvex::cli {

/// Examines the machine and writes what was found to standard output, as a table or as JSON. kFailedReply when a check
/// failed; warnings do not count.
ExitStatus Doctor(const SessionOptions& sessionOptions, bool asJson);

}  // namespace parvex::cli
