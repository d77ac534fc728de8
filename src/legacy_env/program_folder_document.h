#pragma once

#include <string_view>

#include "seams/platform.h"
#include "seams/xml.h"

namespace parvex {

/// An XML file of the legacy program folder (GetBinPath); an empty document when it is missing, unreadable or does not
/// parse.
xml::Document LoadFromProgramFolder(const Platform& platform, std::string_view fileName);

/// The same for a program folder that the caller has read itself.
xml::Document LoadFromFolder(const Platform& platform, std::string_view folder, std::string_view fileName);

}  // namespace parvex
