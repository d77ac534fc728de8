#pragma once

#include <memory>
#include <string>
#include <vector>

#include "legacy_standin/installation/standin_settings.h"
#include "legacy_standin/workflow/workflow.h"

namespace parvex::standin {

/// Where the workflow program was started from: a machine, and the application's folder on it.
class WorkflowPlace {
 public:
  /// Found from the program's own path; an AutomationError when that is in no machine.
  WorkflowPlace();
  ~WorkflowPlace();
  WorkflowPlace(const WorkflowPlace&) = delete;
  WorkflowPlace& operator=(const WorkflowPlace&) = delete;

  WorkflowMachine Machine();
  /// The folder that holds Bin, Temp and Projects, as a path of the machine.
  const std::string& Root() const;
  StandinSettings Settings() const;

 private:
  struct Parts;
  std::unique_ptr<Parts> parts_;
};

/// The program's arguments, without its own name, as UTF-8.
std::vector<std::string> WorkflowArguments(int argc, char** argv);

}  // namespace parvex::standin
