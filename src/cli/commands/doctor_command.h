#pragma once

#include "cli/host/exit_status.h"
#include "cli/session/session.h"

namespace parvex::cli {

struct DoctorOptions {
  bool json = false;
  bool report = false;  ///< text for others, without personal data
};

/// Examines the machine and writes what was found to standard output. kFailedReply when a check failed; warnings do not
/// count.
ExitStatus Doctor(const SessionOptions& sessionOptions, const DoctorOptions& options);

}  // namespace parvex::cli
