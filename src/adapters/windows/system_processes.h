#pragma once

#include "seams/processes.h"

namespace parvex::windows {

class SystemProcesses : public Processes {
 public:
  std::unique_ptr<Process> Start(std::string_view commandLine, int windowStyle, std::string_view program = {}) override;
};

}  // namespace parvex::windows
