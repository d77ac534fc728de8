#pragma once

#include <sys/stat.h>

#include <cstdint>
#include <filesystem>
#include <optional>

namespace parvex::posix {

/// Tells one version of a file or folder from the next.
struct FileVersion {
  std::uint64_t device = 0;
  std::uint64_t inode = 0;
  std::int64_t size = 0;
  std::int64_t modifiedNanoseconds = 0;
  std::int64_t changedNanoseconds = 0;
  bool operator==(const FileVersion&) const = default;
};

/// A file system's clock moves in steps: two changes within one may carry the same time. Usual are 1 to 10 ms.
inline constexpr std::int64_t kLongestClockStep = 50'000'000;  // nanoseconds

/// What a status that was just asked for tells.
FileVersion VersionIn(const struct stat& status);

/// Nothing when the file does not exist or is none.
std::optional<FileVersion> VersionOf(const std::filesystem::path& host);

/// The time of the system, as versions carry it.
std::int64_t NowInNanoseconds();

/// Whether whatever changes the file behind `now` is sure to give it another version: it was last changed more than the
/// longest step before. The time of the change counts, which only the system sets; a program may set the other one.
bool IsSettled(const FileVersion& version, std::int64_t now = NowInNanoseconds());

}  // namespace parvex::posix
