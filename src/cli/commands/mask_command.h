#pragma once

#include <string>

#include "cli/host/exit_status.h"

namespace parvex::cli {

struct MaskCaseOptions {
  std::string file;
  std::string output;
  std::string table;  ///< empty for none
  bool keepPrices = false;
};

/// Writes a case in which names, descriptions and prices are others, and which reproduces as the first one does; a
/// UsageError says why not. The table of what became what is for its owner's eyes only.
ExitStatus MaskCase(const MaskCaseOptions& options);

}  // namespace parvex::cli
