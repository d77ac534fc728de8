#pragma once

#include <string>
#include <vector>

#include "cli/host/host.h"
#include "seams/own_settings.h"
#include "seams/platform.h"

namespace parvex::cli {

/// What was found out about one thing that commands need.
struct Finding {
  enum class State {
    Ok,
    Warning,   ///< works, but somebody should look at it
    Failure,   ///< some commands cannot work like this
    Unchecked  ///< could not be looked at because of an earlier failure
  };
  std::string name;
  State state = State::Ok;
  std::string detail;  ///< what was found
  std::string hint;    ///< what can be done; empty where nothing has to be
};

/// Looks at everything that commands need of a machine: program, registry, folders and the right to write there, files,
/// the legacy application's components, databases. A request for the list of projects is sent, each component created
/// once, and a file written and removed in folders that commands write to; nothing else is changed. Never throws for
/// what is wrong with the machine.
std::vector<Finding> ExamineMachine(const Platform& platform, OwnSettings& settings, const HostFacts& facts);

}  // namespace parvex::cli
