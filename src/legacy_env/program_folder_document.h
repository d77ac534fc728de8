#pragma once

#include <string_view>

#include "seams/platform.h"
#include "seams/xml.h"

namespace parvex {

/// An XML file of the machine, by its whole path. One that does not parse is an empty document, and the reason is noted
/// with the path; one that cannot be read is the error of Files::ReadAll.
xml::Document LoadDocument(const Platform& platform, std::string_view path);

/// An XML file of the legacy program folder (GetBinPath); an empty document when it is missing, unreadable or does not
/// parse (which is noted).
xml::Document LoadFromProgramFolder(const Platform& platform, std::string_view fileName);

/// The same for a program folder that the caller has read itself.
xml::Document LoadFromFolder(const Platform& platform, std::string_view folder, std::string_view fileName);

}  // namespace parvex
