#pragma once

#include <sys/stat.h>

#include <cstdint>
#include <filesystem>
#include <optional>
#include <string>
#include <string_view>

namespace parvex::posix {

// Whole files of this system. Errors are AutomationErrors that call the file by `shownPath`, its path on the machine.

/// Not found (53), a folder or not readable (75).
std::string ReadHostFile(const std::filesystem::path& host, std::string_view shownPath);
/// The same for at most `most` bytes from `at` on.
std::string ReadPartOfHostFile(const std::filesystem::path& host, std::uint64_t at, std::size_t most,
                               std::string_view shownPath);
/// Nothing when it cannot be opened and read, is no file, or is a link.
std::optional<std::string> ReadHostFileIfPlain(const std::filesystem::path& host);

enum class IfPresent { Replace, Refuse };

/// Makes `host` hold exactly `bytes`: a new file beside it, completely written, takes the name in one step, so that the
/// old or the complete new file stands there at every moment, whenever this program ends. The new file is gone after a
/// failure. A replaced file hands its permissions on; one that nobody may write is read-only and refused (75), as is an
/// existing one if asked to (58), a folder always (75). No room: 61.
///
/// The bytes are not forced to the disk first (a forced one takes 3 ms, one that is not 0.1 ms): after a power cut the
/// file is what the file system makes of a renamed file, as on Windows. ext4 and btrfs write its bytes before its name.
void WriteHostFile(const std::filesystem::path& host, std::string_view bytes, IfPresent ifPresent,
                   std::string_view shownPath);
/// The same for whom knows what is there: `present` is its status of this moment, links followed.
void WriteHostFile(const std::filesystem::path& host, const std::optional<struct stat>& present, std::string_view bytes,
                   IfPresent ifPresent, std::string_view shownPath);

/// Not found (53), a folder or read-only (75).
void RemoveHostFile(const std::filesystem::path& host, std::string_view shownPath);

/// The AutomationError for the system's error number `code` (MakeFileError).
[[noreturn]] void RaiseSystemError(int code, std::string_view doing, std::string_view shownPath);

}  // namespace parvex::posix
