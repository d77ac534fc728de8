#pragma once

#include <string>

#include "cli/host/exit_status.h"

namespace parvex::cli {

struct RunCaseOptions {
  std::string file;  ///< a case, the folder of one that was never finished, or a folder of cases
  std::string keep;  ///< where the machine folder stays; empty for nowhere
  bool lenient = false;
};

/// Does recorded calls again and compares. kFailedReply when one is not reproduced.
ExitStatus RunCases(const RunCaseOptions& options);

}  // namespace parvex::cli
