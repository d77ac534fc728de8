#pragma once

#include <optional>
#include <string>
#include <string_view>

#include "formats/jet/format.h"

namespace parvex::jet {

/// The bytes in which a column stores a value that is given as text; none for a false Boolean. An AutomationError that
/// names the column and the value when it cannot hold it: a text too long (3163), not of its type (3421).
std::optional<std::string> EncodeValue(const Column& column, std::string_view text);

}  // namespace parvex::jet
