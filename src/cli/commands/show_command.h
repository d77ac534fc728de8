#pragma once

#include <string>
#include <vector>

#include "cli/host/exit_status.h"

namespace parvex::cli {

struct ShowOptions {
  std::vector<std::string> files;  ///< one Hybris document, or an earlier and a later one
  std::string html;                ///< the page to write instead of text; empty for none
};

/// Shows a Hybris document, or what differs between two. Of two that differ the status is kFailedReply, as scripts know
/// it from other programs that compare.
ExitStatus Show(const ShowOptions& options);

}  // namespace parvex::cli
