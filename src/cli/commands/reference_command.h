#pragma once

#include <string>

#include "cli/host/exit_status.h"

namespace parvex::cli {

struct ReferenceOptions {
  std::string command;  ///< a command of the protocol; empty for all
  std::string schema;   ///< "requests" or "replies"; empty for none
  bool json = false;
  bool xml = false;
};

/// Tells what the protocol's commands take and give: a list of them, one as text, one or all as JSON, the example of
/// one as a document, or a schema. A UsageError for a command that does not exist.
ExitStatus TellCommands(const ReferenceOptions& options);

}  // namespace parvex::cli
