#pragma once

#include <cstdint>
#include <filesystem>
#include <optional>
#include <string>
#include <string_view>

namespace parvex::posix {

// Whole files of this system. Errors are AutomationErrors that call the file by `shownPath`, its path on the machine.

/// Tells one version of a file from the next.
struct FileVersion {
  std::uint64_t device = 0;
  std::uint64_t inode = 0;
  std::int64_t size = 0;
  std::int64_t modifiedNanoseconds = 0;
  std::int64_t changedNanoseconds = 0;
  bool operator==(const FileVersion&) const = default;
};

/// Nothing when the file does not exist or is none.
std::optional<FileVersion> VersionOf(const std::filesystem::path& host);

/// Whether whatever changes the file from now on is sure to give it another version. A file that was changed just now
/// is not settled: its next change may carry the same time, since a file system's clock moves in steps.
bool IsSettled(const FileVersion& version);

/// Not found (53), a folder or not readable (75).
std::string ReadHostFile(const std::filesystem::path& host, std::string_view shownPath);

enum class IfPresent { Replace, Refuse };

/// Makes `host` hold exactly `bytes`: a new file beside it, completely written, takes the name in one step, so that the
/// old or the complete new file stands there at every moment, whenever this program ends. The new file is gone after a
/// failure. A replaced file hands its permissions on; one that nobody may write is read-only and refused (75), as is an
/// existing one if asked to (58). No room: 61.
///
/// The bytes are not forced to the disk first (a forced one takes 3 ms, one that is not 0.1 ms): after a power cut the
/// file is what the file system makes of a renamed file, as on Windows. ext4 and btrfs write its bytes before its name.
void WriteHostFile(const std::filesystem::path& host, std::string_view bytes, IfPresent ifPresent,
                   std::string_view shownPath);

/// Not found (53), a folder or read-only (75).
void RemoveHostFile(const std::filesystem::path& host, std::string_view shownPath);

/// The AutomationError for the system's error number `code`, said as "`what` `shownPath`: reason".
[[noreturn]] void RaiseSystemError(int code, std::string_view what, std::string_view shownPath);

}  // namespace parvex::posix
