#pragma once

#include <string>
#include <string_view>

#include "seams/platform.h"

namespace parvex {

// Where the legacy application is. Its setup writes one registry value, BinPath, which normally ends with a backslash;
// all other folders are derived from it by cutting text.

/// A string value under the local-machine hive, `fallback` when it cannot be read or is longer than 254 bytes in the
/// ANSI code page. The key "SOFTWARE\Korvane\UI\" (exactly so) is never looked up in the registry: it stands for
/// UIKeys.txt.
std::string ReadRegistryString(const Platform& platform, std::string_view key, std::string_view valueName,
                               std::string_view fallback);

/// The program folder as the registry gives it; "error" when it could not be read. Read once a thread: also a failed
/// read is kept for the thread's life, deliberately, so that paths made of it fail later, at the file.
std::string GetBinPath(const Platform& platform);

/// The program folder without its last two path components, which for "C:\K\TQ5-VX\Bin\" is "C:\K\TQ5-VX": Projects,
/// Archives and Temp lie in it. Kept for the thread's life once read; empty after a failed read, which the next call
/// repeats. A program folder with fewer than two backslashes is an error (5).
std::string GetDataRoot(const Platform& platform);

/// Reads the program folder afresh. False when it is empty or cannot be read.
bool ReadBinPath(const Platform& platform, std::string& binPath);

/// What stands before the folder TQ5-VX, without the backslash. Empty for a program folder of 8 characters or fewer; a
/// longer one without "TQ5-VX" is an error (5).
std::string GetDesignRoot(const Platform& platform);
/// The design root followed by "\TQ5-VX\Temp\".
std::string GetDesignTempFolder(const Platform& platform);

/// Drops this thread's kept paths. For a thread that turns to another machine, as tests do; the component never does.
void ForgetInstallPaths();

}  // namespace parvex
