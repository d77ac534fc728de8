#include "adapters/posix/host_file.h"

#include <errno.h>
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>

#include "adapters/posix/leftovers.h"
#include "seams/automation_error.h"

namespace parvex::posix {
namespace {

constexpr int kReading = O_RDONLY | O_NONBLOCK;  // a pipe must not be waited for
constexpr mode_t kWriteBits = S_IWUSR | S_IWGRP | S_IWOTH;

RuntimeError RuntimeErrorOf(int code) {
  switch (code) {
    case ENOENT:
      return RuntimeError::FileNotFound;
    case EEXIST:
      return RuntimeError::FileExists;
    case ENOSPC:
    case EDQUOT:
    case EFBIG:
      return RuntimeError::DiskFull;
    case ENOTDIR:
      return RuntimeError::PathNotFound;
    default:
      return RuntimeError::PathFileAccess;
  }
}

// An open file that is closed at the end.
class OpenFile {
 public:
  OpenFile(const std::filesystem::path& path, int flags, mode_t mode = 0) { Open(path, flags, mode); }
  ~OpenFile() {
    if (descriptor_ >= 0) {
      close(descriptor_);
    }
  }
  OpenFile(const OpenFile&) = delete;
  OpenFile& operator=(const OpenFile&) = delete;

  // One that could not be opened.
  void Open(const std::filesystem::path& path, int flags, mode_t mode = 0) {
    descriptor_ = open(path.c_str(), flags | O_CLOEXEC, mode);
  }

  int Descriptor() const { return descriptor_; }
  explicit operator bool() const { return descriptor_ >= 0; }

 private:
  int descriptor_ = -1;
};

// All that an open file of this status holds. 0, or the error number that the reading failed with.
int ReadWhole(int descriptor, const struct stat& status, std::string& bytes) {
  // One byte more than the file has: a read that gives what it has, and not that byte, has met its end.
  const std::size_t expected = static_cast<std::size_t>(status.st_size);
  bytes.assign(expected + 1, '\0');
  std::size_t size = 0;
  for (;;) {
    const ssize_t got = read(descriptor, bytes.data() + size, bytes.size() - size);
    if (got < 0 && errno != EINTR) {
      return errno;
    }
    const std::size_t more = got < 0 ? 0 : static_cast<std::size_t>(got);
    size += more;
    if (got == 0 || (more > 0 && size == expected)) {
      bytes.resize(size);
      return 0;
    }
    if (size == bytes.size()) {
      bytes.resize(2 * size);
    }
  }
}

void RefuseReadOnly(const struct stat& status, std::string_view doing, std::string_view shownPath) {
  if ((status.st_mode & kWriteBits) == 0) {
    throw MakeFileError(RuntimeError::PathFileAccess, doing, shownPath, kIsReadOnly);
  }
}

void RefuseFolder(const struct stat& status, std::string_view doing, std::string_view shownPath) {
  if (S_ISDIR(status.st_mode)) {
    throw MakeFileError(RuntimeError::PathFileAccess, doing, shownPath, kIsFolder);
  }
}

}  // namespace

std::string ReadHostFile(const std::filesystem::path& host, std::string_view shownPath) {
  const OpenFile file(host, kReading);
  struct stat status;
  if (!file || fstat(file.Descriptor(), &status) != 0) {
    RaiseSystemError(errno, "read", shownPath);
  }
  RefuseFolder(status, "read", shownPath);
  if (!S_ISREG(status.st_mode)) {
    throw MakeFileError(RuntimeError::PathFileAccess, "read", shownPath, "it is no file");
  }
  std::string bytes;
  if (const int failed = ReadWhole(file.Descriptor(), status, bytes); failed != 0) {
    RaiseSystemError(failed, "read", shownPath);
  }
  return bytes;
}

std::string ReadPartOfHostFile(const std::filesystem::path& host, std::uint64_t at, std::size_t most,
                               std::string_view shownPath) {
  const OpenFile file(host, kReading);
  struct stat status;
  if (!file || fstat(file.Descriptor(), &status) != 0) {
    RaiseSystemError(errno, "read", shownPath);
  }
  RefuseFolder(status, "read", shownPath);
  const std::uint64_t left = at < static_cast<std::uint64_t>(status.st_size) ? status.st_size - at : 0;
  std::string bytes(static_cast<std::size_t>(std::min<std::uint64_t>(left, most)), '\0');
  std::size_t size = 0;
  while (size < bytes.size()) {
    const ssize_t got =
        pread(file.Descriptor(), bytes.data() + size, bytes.size() - size, static_cast<off_t>(at + size));
    if (got < 0 && errno != EINTR) {
      RaiseSystemError(errno, "read", shownPath);
    }
    if (got == 0) {
      break;
    }
    size += got < 0 ? 0 : static_cast<std::size_t>(got);
  }
  bytes.resize(size);
  return bytes;
}

std::optional<std::string> ReadHostFileIfPlain(const std::filesystem::path& host) {
  const OpenFile file(host, kReading | O_NOFOLLOW);
  struct stat status;
  std::string bytes;
  if (!file || fstat(file.Descriptor(), &status) != 0 || !S_ISREG(status.st_mode) ||
      ReadWhole(file.Descriptor(), status, bytes) != 0) {
    return std::nullopt;
  }
  return bytes;
}

void WriteHostFile(const std::filesystem::path& host, std::string_view bytes, IfPresent ifPresent,
                   std::string_view shownPath, Durability durability) {
  RemoveLeftovers(host.parent_path());
  struct stat status;
  const bool present = stat(host.c_str(), &status) == 0;
  WriteHostFile(host, present ? std::optional(status) : std::nullopt, bytes, ifPresent, shownPath, durability);
}

void WriteHostFile(const std::filesystem::path& host, const std::optional<struct stat>& present, std::string_view bytes,
                   IfPresent ifPresent, std::string_view shownPath, Durability durability) {
  if (present) {
    if (ifPresent == IfPresent::Refuse && !S_ISDIR(present->st_mode)) {
      RaiseSystemError(EEXIST, "write", shownPath);
    }
    RefuseToReplace(*present, shownPath);
  }
  const auto check = [&](int failed) {
    if (failed != 0) {
      RaiseSystemError(failed, "write", shownPath);
    }
  };
  NewFile file(host);
  check(file.Make(present ? &*present : nullptr));
  check(file.Append(bytes));
  check(durability == Durability::OnDisk ? file.Flush() : 0);
  check(file.TakeName(ifPresent));
  check(durability == Durability::OnDisk ? file.FlushFolder() : 0);
}

void RefuseToReplace(const struct stat& present, std::string_view shownPath) {
  RefuseFolder(present, "write", shownPath);
  RefuseReadOnly(present, "write", shownPath);
}

void RemoveHostFile(const std::filesystem::path& host, std::string_view shownPath) {
  struct stat status;
  if (lstat(host.c_str(), &status) != 0) {
    RaiseSystemError(errno, "remove", shownPath);
  }
  RefuseReadOnly(status, "remove", shownPath);
  if (unlink(host.c_str()) != 0) {
    RaiseSystemError(errno, "remove", shownPath);
  }
}

void RaiseSystemError(int code, std::string_view doing, std::string_view shownPath) {
  throw MakeFileError(RuntimeErrorOf(code), doing, shownPath, code == EISDIR ? kIsFolder : "");
}

}  // namespace parvex::posix
