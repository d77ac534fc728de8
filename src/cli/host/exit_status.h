#pragma once

#include <stdexcept>

namespace parvex::cli {

/// How the program ends. Scripts rely on these numbers.
enum ExitStatus : int {
  kReply = 0,        ///< done; for commands: the last one was answered
  kFailedReply = 1,  ///< the last command was answered with the failed reply; a check failed; two documents differ
  kWrongUsage = 2,   ///< nothing was sent: the command line, or a file or folder that it names, is no use
  kFailedCall = 3    ///< at least one call failed, or a result could not be written
};

/// What ends the program with kWrongUsage. Its text goes to standard error.
class UsageError : public std::runtime_error {
 public:
  using std::runtime_error::runtime_error;
};

}  // namespace parvex::cli
