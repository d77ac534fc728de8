#pragma once

#include <string>

#include "formats/jet/file.h"
#include "formats/jet/format.h"

namespace parvex::jet {

/// The database with its header changed behind its mask.
template <typename Change>
std::string WithHeader(const std::string& database, Change change) {
  const Version version = static_cast<Version>(database[0x14]);
  std::string header = database.substr(0, PageSize(version));
  ToggleHeaderMask(header, version);
  change(header);
  ToggleHeaderMask(header, version);
  return header + database.substr(PageSize(version));
}

}  // namespace parvex::jet
