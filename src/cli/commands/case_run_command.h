#pragma once

#include <string>

#include "cli/host/exit_status.h"
#include "recording/recorded_case.h"
#include "replay/case_run.h"
#include "seams/host_system.h"

namespace parvex::cli {

struct RunCaseOptions {
  std::string file;  ///< a case, the folder of one that was never finished, or a folder of cases
  std::string keep;  ///< where the machine folder stays; empty for nowhere
  bool lenient = false;
};

/// Does recorded calls again and compares. kFailedReply when one is not reproduced.
ExitStatus RunCases(const RunCaseOptions& options);

/// The same for one case, on a machine folder that is gone afterwards.
replay::RunResult RunOnce(HostSystem& system, const recording::RecordedCase& read);

}  // namespace parvex::cli
