#pragma once

#include <cstddef>
#include <functional>
#include <memory>
#include <string>
#include <vector>

#include "recording/recorded_case.h"
#include "replay/difference.h"
#include "seams/host_system.h"
#include "seams/platform.h"

namespace parvex::replay {

/// The machine that a folder stands for; `codePage` is its ANSI code page. The members of what it gives live as long as
/// that. Of them registry, ini files, files, databases and the code page are asked. An AutomationError says why the
/// folder, or the code page, cannot be used.
using MachineOfFolder = std::function<std::shared_ptr<const Platform>(const std::string& folder, unsigned codePage)>;

struct RunOptions {
  std::string folder;  ///< of the system, which exists and is empty: becomes the machine folder, and stays
  MachineOfFolder machine;
  bool lenient = false;  ///< recorded steps that nobody asks for are let pass
};

/// How a call that was done again compares with its record.
struct RunResult {
  /// In the order of the steps, then the outcome, the reply and the files left. At most some thousands.
  std::vector<Difference> differences;
  std::string outcome;             ///< of the call now: as in case.json
  std::size_t steps = 0;           ///< that the record has
  std::vector<std::string> notes;  ///< what may explain a difference, or limits what was compared; for people

  bool IsReproduced() const { return differences.empty(); }
};

/// Does the call of a case again: lays its machine out as a folder, answers router, late-bound objects, programs and
/// boxes from the record, sends the command through the recorded entry point, and compares what the outside was asked,
/// how the call ended, its reply, and the files that it left (docs/case-format.md). A call that never came to its end
/// does so again where the last recorded step is asked for.
///
/// What this thread keeps from call to call is the case's meanwhile, and its own again afterwards. An AutomationError
/// when the machine folder cannot be written.
RunResult RunCase(HostSystem& system, const recording::RecordedCase& recorded, const RunOptions& options);

}  // namespace parvex::replay
