#pragma once

#include <cstddef>
#include <string>
#include <string_view>

namespace parvex {

// What Windows makes of the names of files, for every place that takes names from outside or stands for Windows.

/// Names of a path: folders in each other and the file. Windows' own paths of 260 characters hold half as many.
inline constexpr std::size_t kMostNamesOfPath = 250;

/// Whether a file can have this name, one component of a path: it is not empty, holds no control character and none of
/// \ / : * ? " < > |, does not end with a dot or a blank, and means no device.
bool IsFileName(std::string_view name);

/// Whether a component means a device in every folder: NUL, CON, COM1 and the like, in any letter case, with blanks or
/// an extension behind it ("nul.txt") or without. The superscript digits one to three count as digits of a port.
bool IsDeviceName(std::string_view name);

/// Whether a character is one of those that no component may hold: control characters and \ / : * ? " < > |
bool IsForbiddenInFileName(char c);

/// The component without the dots and blanks at its end, which Windows drops.
std::string_view WithoutTrailingDotsAndBlanks(std::string_view name);

/// One spelling for all paths that mean the same file without a look at any folder: letter case folded, one backslash
/// between names, no "." and nothing that ".." takes back, no dots and blanks at the end of names, no final separator.
std::string FoldPath(std::string_view path);

/// Whether a path means no file of a folder but a device, a pipe, a stream of a file or the system's own name space:
/// \\.\ and \\?\ at its beginning, a colon behind the drive's, the name of a device at its end.
bool IsDevicePath(std::string_view path);

}  // namespace parvex
