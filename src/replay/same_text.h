#pragma once

#include <string_view>

#include "journal/journal_lines.h"

namespace parvex::replay {

/// Whether two texts say the same: as XML, layout of markup aside, where both are XML; else byte for byte.
bool SameText(std::string_view one, std::string_view other);

/// The same of values, at any depth. Members of objects count whatever their order.
bool SameValue(const journal::Json& one, const journal::Json& other);

/// Whether two paths of a machine mean the same file.
bool SamePath(std::string_view one, std::string_view other);

}  // namespace parvex::replay
