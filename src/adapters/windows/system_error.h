#pragma once

#include <cstdint>
#include <string>
#include <string_view>

#include "seams/automation_error.h"

namespace parvex::windows {

/// The automation error for a failed file operation, by the system's error code (MakeFileError). Where access is
/// refused the file itself tells why, as far as it does.
AutomationError FileError(std::uint32_t systemCode, std::string_view doing, std::string_view path);

/// "0x" and eight hexadecimal digits.
std::string Hex(std::uint32_t number);

}  // namespace parvex::windows
