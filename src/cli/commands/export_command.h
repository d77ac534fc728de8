#pragma once

#include <string>
#include <vector>

#include "cli/host/exit_status.h"
#include "cli/session/session.h"

namespace parvex::cli {

struct ExportOptions {
  std::string project;
  std::vector<std::string> tags;  ///< names of the tags to export; none for all
  std::string selection;          ///< a file that holds the selection instead; empty for none
  std::string output = "-";
  bool lenient = false;  ///< take what came back, whatever was asked for
};

/// Exports units of a project as a Hybris document, by the command getHybrisXMLNoUI. Where standard error is a
/// terminal, it tells how far it is. A failed export leaves the output as it was, tells why and is kFailedReply. So
/// does one that is not what was asked for, which is kFailedCall: the protocol answers with whatever the quote builder
/// left.
///
/// A selection file is XML that holds a UserSelectionTransfer, alone or somewhere inside (a command document, say). It
/// may leave its ProjectName out; one that names another project is a UsageError.
ExitStatus Export(const SessionOptions& sessionOptions, const ExportOptions& options);

}  // namespace parvex::cli
