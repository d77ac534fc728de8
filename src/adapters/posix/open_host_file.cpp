#include "adapters/posix/open_host_file.h"

#include <errno.h>
#include <fcntl.h>
#include <sys/statvfs.h>
#include <unistd.h>

#include <algorithm>

#include "adapters/posix/host_file.h"

namespace parvex::posix {
namespace {

constexpr std::size_t kWorthReserving = 64u << 10;
constexpr std::size_t kReservedAtOnce = 4u << 20;
constexpr std::uint64_t kRoomLeftToOthers = std::uint64_t{1} << 30;

}  // namespace

void OpenHostFile::Append(std::string_view bytes) {
  if (bytes.size() >= kWorthReserving && end_ + bytes.size() > reserved_) {
    Reserve(bytes.size());
  }
  Overwrite(end_, bytes);
  end_ += bytes.size();
}

void OpenHostFile::Overwrite(std::uint64_t at, std::string_view bytes) {
  while (!bytes.empty()) {
    const ssize_t written = pwrite(descriptor_, bytes.data(), bytes.size(), static_cast<off_t>(at));
    if (written < 0 && errno != EINTR) {
      RaiseSystemError(errno, "write", shownPath_);
    }
    bytes.remove_prefix(written < 0 ? 0 : static_cast<std::size_t>(written));
    at += written < 0 ? 0 : static_cast<std::uint64_t>(written);
  }
}

void OpenHostFile::Truncate(std::uint64_t size) {
  if (ftruncate(descriptor_, static_cast<off_t>(size)) != 0) {
    RaiseSystemError(errno, "write", shownPath_);
  }
  end_ = size;
  reserved_ = 0;
}

std::string OpenHostFile::Read(std::uint64_t at, std::size_t most) {
  std::string bytes(most, '\0');
  std::size_t size = 0;
  while (size < most) {
    const ssize_t got = pread(descriptor_, bytes.data() + size, most - size, static_cast<off_t>(at + size));
    if (got < 0 && errno != EINTR) {
      RaiseSystemError(errno, "read", shownPath_);
    }
    if (got == 0) {
      break;
    }
    size += got < 0 ? 0 : static_cast<std::size_t>(got);
  }
  bytes.resize(size);
  return bytes;
}

void OpenHostFile::Finish() {
  if (reserved_ > end_ && ftruncate(descriptor_, static_cast<off_t>(end_)) != 0) {
    // What was reserved stays reserved, until the file goes.
  }
  reserved_ = 0;
}

// Blocks that are there before they are written take a third less time. Nobody shall find the disk full for that.
void OpenHostFile::Reserve(std::size_t more) {
  struct statvfs disk;
  const bool isRoomy =
      fstatvfs(descriptor_, &disk) == 0 && std::uint64_t{disk.f_bavail} * disk.f_frsize > kRoomLeftToOthers;
  const std::size_t size = std::max(more, kReservedAtOnce);
  if (isRoomy && fallocate(descriptor_, FALLOC_FL_KEEP_SIZE, static_cast<off_t>(end_), static_cast<off_t>(size)) == 0) {
    reserved_ = end_ + size;
  }
}

}  // namespace parvex::posix
