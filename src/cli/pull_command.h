#pragma once

#include <string>
#include <vector>

#include "cli/exit_status.h"
#include "platform/automation_error.h"

namespace parvex::cli {

struct PullOptions {
  std::string machine;             ///< the machine folder; empty when none was named
  std::string journal;             ///< the file to write the journal to; empty for none
  std::string replay;              ///< the journal to answer router requests from; empty for none
  std::vector<std::string> files;  ///< command documents in the order in which they are sent, "-" for standard input
};

/// Sends the command documents to one LegacyORLAPull, through Pull or PullNGORLA, and writes each reply to standard
/// output. A failed call is told on standard error and the next file sent. What can be found wrong before the first
/// file is sent is a UsageError.
ExitStatus SendThroughPull(const PullOptions& options);
ExitStatus SendThroughPullNgorla(const PullOptions& options);

/// Tells an error on standard error: what it happened to (unless empty), number in hex, source, description.
void ReportError(const std::string& subject, const AutomationError& error);

}  // namespace parvex::cli
