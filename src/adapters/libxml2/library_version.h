#pragma once

#include <string>

namespace parvex::xml {

/// The version of the libxml2 that runs: "2.9.14".
std::string LibraryVersion();

}  // namespace parvex::xml
