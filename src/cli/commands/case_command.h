#pragma once

#include <string>

#include "cli/host/exit_status.h"

namespace parvex::cli {

// Recorded calls: archives, or folders that a host left when it died. One that is damaged, hostile or of a later format
// is a UsageError.

/// The cases of a folder, a line each, the oldest first; one that cannot be read says why.
ExitStatus ListCases(const std::string& folder);

struct ShowCaseOptions {
  std::string file;
  bool json = false;
  std::string html;  ///< the page to write instead of text; empty for none
};
ExitStatus ShowCase(const ShowCaseOptions& options);

ExitStatus ListCaseFiles(const std::string& file);

/// Writes everything that a case holds into a new folder. Its machine/ is a machine folder.
ExitStatus ExtractCase(const std::string& file, const std::string& folder);

}  // namespace parvex::cli
