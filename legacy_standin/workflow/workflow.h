#pragma once

#include <span>
#include <string>
#include <string_view>

#include "legacy_standin/installation/standin_settings.h"
#include "seams/code_page.h"
#include "seams/files.h"
#include "seams/private_profile.h"

namespace parvex::standin {

/// The seams that the workflow program works on.
struct WorkflowMachine {
  Files& files;
  PrivateProfile& privateProfile;
  CodePage& codePage;
};

/// How a run ended.
struct WorkflowResult {
  int exitCode = 0;
  std::string message;  ///< for people: why nothing was selected, empty after a good run
};

inline constexpr int kWorkflowDone = 0;
inline constexpr int kWorkflowNothingSelected = 1;  ///< the selection could not be made: the output file says "Cancel"
inline constexpr int kWorkflowWrongUsage = 2;       ///< no switch, or an unknown one: nothing was written
inline constexpr int kWorkflowNoOutput = 3;         ///< the output file could not be written

/// One run of the workflow program as quote builder. `root` is the folder that holds Bin, Temp and Projects, for
/// example "C:\Korvane\TQ5-VX". Writes Temp\QBOutput.ini, and before it the data archives of the units that stand in
/// it; docs/standin.md describes what it reads and writes. Never throws: what goes wrong is a cancelled run with a
/// message, as the caller looks at the output file only.
WorkflowResult RunWorkflow(const WorkflowMachine& machine, std::string_view root,
                           std::span<const std::string> arguments, const StandinSettings::Workflow& settings);

}  // namespace parvex::standin
