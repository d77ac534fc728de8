#pragma once

#include <string>

#include "cli/host/exit_status.h"
#include "cli/session/session.h"

namespace parvex::cli {

struct RouterIdsOptions {
  std::string file;  ///< a type library, a file that has one in it, or what this command has written of one
  bool save = false;
  bool machineWide = false;  ///< save for all users instead of the current one
};

/// Tells the identifiers of the message router that a file describes, or saves them in the machine's registry.
ExitStatus TellRouterIds(const SessionOptions& sessionOptions, const RouterIdsOptions& options);

}  // namespace parvex::cli
