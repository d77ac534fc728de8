#pragma once

#include <string>

#include "cli/host/exit_status.h"

namespace parvex::cli {

struct OpenOptions {
  std::string file;  ///< any file of this world, or the folder of an unfinished case; "-" for standard input
  bool json = false;
};

/// Tells what a file is, which its content decides and not its name, and what is in it. Nothing is written anywhere. A
/// UsageError for what none of the readers knows or takes.
ExitStatus Open(const OpenOptions& options);

}  // namespace parvex::cli
