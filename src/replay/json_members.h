#pragma once

#include <cstdint>
#include <string>

#include "journal/journal_lines.h"

namespace parvex::replay {

using journal::Json;

// Lines of a case are somebody else's: a member that is absent or of another type reads as nothing.

/// Null where there is no such member.
const Json& Member(const Json& object, const char* key);
std::string TextAt(const Json& object, const char* key);
bool FlagAt(const Json& object, const char* key);
std::uint64_t CountAt(const Json& object, const char* key);

}  // namespace parvex::replay
