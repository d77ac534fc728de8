#pragma once

#include <filesystem>

namespace parvex::posix {

// New files (formats/text/new_file_names.h) that a program which ended too early left beside those that they were to
// become.

/// Removes those of a folder that are older than a day and that nobody holds. A folder is looked through once in the
/// life of this program, by the first writer into it. Whether something was removed.
bool RemoveLeftovers(const std::filesystem::path& folder);

/// Of a folder that this program has just made: there is nothing to look for in it.
void NoteWithoutLeftovers(const std::filesystem::path& folder);

}  // namespace parvex::posix
