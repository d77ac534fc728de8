#pragma once

#include <string_view>

namespace parvex::replay {

/// Whether two databases have the same tables with the same columns and rows, whatever their order: engines lay the
/// same content out in many ways. False for what cannot be read.
bool SameDatabase(std::string_view one, std::string_view other);

}  // namespace parvex::replay
