#pragma once

#include <sys/stat.h>

#include <cstdint>
#include <filesystem>
#include <optional>
#include <string>
#include <string_view>

#include "adapters/posix/new_file.h"

namespace parvex::posix {

// Whole files of this system. Errors are AutomationErrors that call the file by `shownPath`, its path on the machine.

/// Not found (53), a folder or not readable (75).
std::string ReadHostFile(const std::filesystem::path& host, std::string_view shownPath);
/// The same for at most `most` bytes from `at` on.
std::string ReadPartOfHostFile(const std::filesystem::path& host, std::uint64_t at, std::size_t most,
                               std::string_view shownPath);
/// Nothing when it cannot be opened and read, is no file, or is a link.
std::optional<std::string> ReadHostFileIfPlain(const std::filesystem::path& host);

/// Whether the bytes are forced to the disk before the file takes the name, and then the name. That costs milliseconds:
/// only for a file that is the only copy of what it holds. Otherwise, after a power cut, the file is what the file
/// system makes of a renamed one; ext4 and btrfs write its bytes before its name.
enum class Durability { OfSystem, OnDisk };

/// Makes `host` hold exactly `bytes`: a new file beside it, completely written, takes the name in one step, so that the
/// old or the complete new file stands there at every moment, whenever this program ends. The new file is gone after a
/// failure. A replaced file hands its permissions on; one that nobody may write is read-only and refused (75), as is an
/// existing one if asked to (58), a folder always (75). No room: 61. A link is replaced, not what it leads to; the
/// other names of a file that has several keep the old content. The first write into a folder removes leftovers in it.
void WriteHostFile(const std::filesystem::path& host, std::string_view bytes, IfPresent ifPresent,
                   std::string_view shownPath, Durability durability = Durability::OfSystem);
/// The same for whom knows what is there: `present` is its status of this moment, links followed.
void WriteHostFile(const std::filesystem::path& host, const std::optional<struct stat>& present, std::string_view bytes,
                   IfPresent ifPresent, std::string_view shownPath, Durability durability = Durability::OfSystem);
/// A folder, or a file that nobody may write (75).
void RefuseToReplace(const struct stat& present, std::string_view shownPath);

/// Not found (53), a folder or read-only (75).
void RemoveHostFile(const std::filesystem::path& host, std::string_view shownPath);

/// The AutomationError for the system's error number `code` (MakeFileError).
[[noreturn]] void RaiseSystemError(int code, std::string_view doing, std::string_view shownPath);

}  // namespace parvex::posix
