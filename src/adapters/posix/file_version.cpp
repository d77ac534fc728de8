#include "adapters/posix/file_version.h"

#include <time.h>

namespace parvex::posix {
namespace {

std::int64_t Nanoseconds(const timespec& time) { return std::int64_t{time.tv_sec} * 1'000'000'000 + time.tv_nsec; }

}  // namespace

FileVersion VersionIn(const struct stat& status) {
  return {status.st_dev, status.st_ino, status.st_size, Nanoseconds(status.st_mtim), Nanoseconds(status.st_ctim)};
}

std::optional<FileVersion> VersionOf(const std::filesystem::path& host) {
  struct stat status;
  if (stat(host.c_str(), &status) != 0 || !S_ISREG(status.st_mode)) {
    return std::nullopt;
  }
  return VersionIn(status);
}

std::int64_t NowInNanoseconds() {
  timespec now;
  clock_gettime(CLOCK_REALTIME, &now);
  return Nanoseconds(now);
}

bool IsSettled(const FileVersion& version, std::int64_t now) {
  return now - version.changedNanoseconds > kLongestClockStep;
}

}  // namespace parvex::posix
