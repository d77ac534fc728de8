#pragma once

#include <string_view>

#include "seams/xml.h"

namespace parvex {

/// The node itself; for a null one the error "object not set" (91), which says that `path` was not found in `place`.
const xml::Node& Required(const xml::Node& node, std::string_view path, std::string_view place);

}  // namespace parvex
