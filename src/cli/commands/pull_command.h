#pragma once

#include <string>
#include <vector>

#include "cli/host/exit_status.h"
#include "cli/session/session.h"

namespace parvex::cli {

/// Sends command documents ("-" for standard input) in their order to one LegacyORLAPull, through Pull or PullNGORLA,
/// and writes each reply to standard output. A failed call is told on standard error and the next file sent. What can
/// be found wrong before the first file is sent is a UsageError. An answer of the router that is no document is told,
/// though the command is answered, as the protocol has it, and no call failed.
ExitStatus SendThroughPull(const SessionOptions& options, const std::vector<std::string>& files);
ExitStatus SendThroughPullNgorla(const SessionOptions& options, const std::vector<std::string>& files);

}  // namespace parvex::cli
