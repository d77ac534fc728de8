#pragma once

#include <string>
#include <string_view>

namespace parvex::cli {

/// The bytes of a file of this system, of standard input for "-" (read once: each further "-" is the same bytes). A
/// file that cannot be read is a UsageError.
std::string ReadInput(const std::string& fileName);

/// Writes bytes to standard output at once; an AutomationError (75) when that fails.
void WriteOutput(std::string_view bytes);

}  // namespace parvex::cli
