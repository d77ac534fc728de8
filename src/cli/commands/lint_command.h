#pragma once

#include <string>

#include "cli/host/exit_status.h"

namespace parvex::cli {

struct LintOptions {
  std::string file;     ///< a command document; "-" for standard input
  std::string through;  ///< "pull" or "pull-ngorla"; empty for whichever serves the command
  bool json = false;
};

/// Says what is wrong with a command document before it is sent. With findings the status is kFailedReply.
ExitStatus LintFile(const LintOptions& options);

}  // namespace parvex::cli
