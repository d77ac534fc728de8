#pragma once

#include <string>

#include "cli/host/exit_status.h"

namespace parvex::cli {

struct ShowOptions {
  std::string file;   ///< the Hybris document, the earlier one of two
  std::string later;  ///< the later one; empty for none
  std::string html;   ///< the page to write instead of text; empty for none
  bool json = false;  ///< JSON instead of text; not together with a page
};

/// Shows a Hybris document, or what differs between two. Of two that differ the status is kFailedReply, as scripts know
/// it from other programs that compare.
ExitStatus Show(const ShowOptions& options);

}  // namespace parvex::cli
