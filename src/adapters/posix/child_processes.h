#pragma once

#include <sys/types.h>

#include <memory>
#include <vector>

#include "adapters/posix/machine_folder.h"
#include "seams/processes.h"

namespace parvex::posix {

/// Programs of the machine as child processes: a file of the machine that this system can run, a script with "#!" or a
/// native program. The child
/// - finds the machine's folder in the environment variable PARVEX_MACHINE,
/// - inherits the working folder and standard error, nothing else: its standard input is empty, its standard output
///   goes to standard error (ours carries replies), no other open file is handed on.
/// The window style is of no effect. A child that a signal ended has the exit code 0xC0000000 plus the signal's number.
class ChildProcesses : public Processes {
 public:
  explicit ChildProcesses(MachineFolder& folder);

  std::unique_ptr<Process> Start(std::string_view commandLine, int windowStyle, std::string_view program = {}) override;

 private:
  MachineFolder& folder_;
  // Children that still ran when their Process was dropped; looked after so that none stays behind as a zombie.
  std::shared_ptr<std::vector<pid_t>> abandoned_;
};

}  // namespace parvex::posix
