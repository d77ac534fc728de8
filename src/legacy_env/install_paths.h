#pragma once

#include <string>
#include <string_view>

#include "seams/platform.h"

namespace parvex {

/// Where the registry of the machine has the program folder.
inline constexpr std::string_view kInstallationKey = "SOFTWARE\\Korvane\\KDQ47";
inline constexpr std::string_view kProgramFolderValue = "BinPath";

// Where the legacy application is. Its setup writes one registry value, BinPath, which normally ends with a backslash;
// all other folders are derived from it by cutting text. What is kept is kept in the thread's state
// (legacy_env/thread_state.h).

/// The program folder as the registry gives it; "error" when it could not be read. Read once a thread: also a failed
/// read is kept for the thread's life, deliberately, so that paths made of it fail later, at the file.
std::string GetBinPath(const Platform& platform);

/// The program folder without its last two path components, which for "C:\K\TQ5-VX\Bin\" is "C:\K\TQ5-VX": Projects,
/// Archives and Temp lie in it. Kept for the thread's life once read; empty after a failed read, which the next call
/// repeats. A program folder with fewer than two backslashes is an error (5).
std::string GetDataRoot(const Platform& platform);

/// Folders of the data root, without a final backslash: of the hand-over files, of projects, of archived projects.
std::string GetHandOverFolder(const Platform& platform);
std::string GetProjectsFolder(const Platform& platform);
std::string GetArchivesFolder(const Platform& platform);

/// Reads the program folder afresh. False when it is empty or cannot be read.
bool ReadBinPath(const Platform& platform, std::string& binPath);

/// What stands before the folder TQ5-VX, without the backslash. Empty for a program folder of 8 characters or fewer; a
/// longer one without "TQ5-VX" is an error (5).
std::string GetDesignRoot(const Platform& platform);
/// The design root followed by "\TQ5-VX\Temp\".
std::string GetDesignTempFolder(const Platform& platform);

}  // namespace parvex
