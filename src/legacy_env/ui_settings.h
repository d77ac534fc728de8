#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>

#include "seams/automation_error.h"
#include "seams/platform.h"

namespace parvex {

// UIKeys.txt in the program folder: lines of key, "=" and value, ANSI text. The builder reads its window settings from
// it. Every failure has the operation's name as its source ("KDQU470.getUIValue", "KDQU470.setUIValue"):
// kBinPathUnknown with the text "Unable to read BinPath" when the program folder is not known, "file not found" (53)
// for a missing file.

/// Number of the error "Unable to read BinPath".
inline constexpr std::uint32_t kBinPathUnknown = kObjectErrorBase + 0x200u;

/// What follows the first "=" of the first line that begins with `key` (letter case counts) and holds a "="; empty when
/// there is none.
std::string getUIValue(const Platform& platform, std::string_view key);

/// How many lines a file of that kind has. CR LF, CR and LF end a line; the last one needs none.
std::size_t CountUiLines(const Platform& platform, std::string_view path);

/// A file of more bytes is refused (75), in all these operations.
inline constexpr std::size_t kLongestUiFile = 16u << 20;

/// So many lines setUIValue has room for.
inline constexpr std::size_t kMostUiLines = 101;

/// Gives the lines of ToolBarActive and TreeViewActive the new value and the line of SplitterPosition its fixed text;
/// all other lines stay. A file of more than kMostUiLines lines is an error (9) and stays as it is.
void setUIValue(const Platform& platform, std::string_view value);

}  // namespace parvex
