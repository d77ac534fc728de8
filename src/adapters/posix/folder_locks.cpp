#include "adapters/posix/folder_locks.h"

#include <errno.h>
#include <fcntl.h>
#include <sys/file.h>
#include <sys/stat.h>
#include <unistd.h>

#include <chrono>
#include <cstdint>
#include <map>
#include <optional>
#include <string>
#include <system_error>
#include <thread>
#include <utility>

#include "adapters/posix/host_file.h"
#include "seams/automation_error.h"
#include "seams/lock_holder.h"

namespace parvex::posix {
namespace {

class Descriptor {
 public:
  explicit Descriptor(int number) : number_(number) {}
  ~Descriptor() {
    if (number_ >= 0) {
      close(number_);
    }
  }
  Descriptor(Descriptor&& other) noexcept : number_(std::exchange(other.number_, -1)) {}
  Descriptor& operator=(Descriptor&& other) noexcept {
    std::swap(number_, other.number_);
    return *this;
  }

  int Get() const { return number_; }
  explicit operator bool() const { return number_ >= 0; }

 private:
  int number_;
};

enum class Taken { Yes, No, Unsupported };

Taken TryLock(int descriptor) {
  for (;;) {
    if (flock(descriptor, LOCK_EX | LOCK_NB) == 0) {
      return Taken::Yes;
    }
    if (errno != EINTR) {
      return errno == EWOULDBLOCK ? Taken::No : Taken::Unsupported;
    }
  }
}

// A file of another user may be locked without being written.
Descriptor OpenLockFile(const std::filesystem::path& path) {
  constexpr int kFlags = O_CREAT | O_CLOEXEC | O_NOFOLLOW | O_NONBLOCK;
  Descriptor file(open(path.c_str(), O_RDWR | kFlags, 0666));
  return file || errno != EACCES ? std::move(file) : Descriptor(open(path.c_str(), O_RDONLY | (kFlags & ~O_CREAT)));
}

// Whether the name still means the open file: who let go has removed it.
bool IsStill(const std::filesystem::path& path, int descriptor) {
  struct stat open = {};
  struct stat named = {};
  return fstat(descriptor, &open) == 0 && lstat(path.c_str(), &named) == 0 && open.st_dev == named.st_dev &&
         open.st_ino == named.st_ino;
}

void WriteHolder(int descriptor, bool waitsForUser) {
  std::error_code ignored;
  const std::string text =
      TextOfHolder({static_cast<std::uint32_t>(getpid()),
                    std::filesystem::read_symlink("/proc/self/exe", ignored).string(), waitsForUser});
  // Who cannot read it waits as for any other.
  [[maybe_unused]] const bool isShorter = ftruncate(descriptor, 0) == 0;
  [[maybe_unused]] const ssize_t written = pwrite(descriptor, text.data(), text.size(), 0);
}

MachineLocks::Holder ReadHolder(int descriptor) {
  std::string text(kMostOfHolder, '\0');
  const ssize_t got = pread(descriptor, text.data(), text.size(), 0);
  text.resize(got > 0 ? static_cast<std::size_t>(got) : 0);
  return HolderIn(text);
}

class FileLock : public MachineLocks::Lock {
 public:
  explicit FileLock(std::filesystem::path path) : path_(std::move(path)) {}
  // Removed before it is let go, so that nobody locks a file that has no name any more without finding out.
  ~FileLock() override {
    if (file_) {
      unlink(path_.c_str());
    }
  }
  FileLock(const FileLock&) = delete;
  FileLock& operator=(const FileLock&) = delete;

  // From now on the file goes with this.
  void Hold(Descriptor file) { file_ = std::move(file); }

 private:
  std::filesystem::path path_;
  Descriptor file_{-1};
};

}  // namespace

std::unique_ptr<MachineLocks::Lock> FolderLocks::TryTake(std::string_view folder, bool waitsForUser, Holder& holder) {
  const std::optional<std::filesystem::path> host = folder_.Resolve(folder);
  std::error_code ignored;
  if (!host || !std::filesystem::is_directory(*host, ignored)) {
    return std::make_unique<Lock>();
  }
  const std::filesystem::path path = *host / kLockFile;
  auto lock = std::make_unique<FileLock>(path);
  for (;;) {
    Descriptor file = OpenLockFile(path);
    if (!file) {
      RaiseSystemError(errno, "lock", folder);
    }
    switch (TryLock(file.Get())) {
      case Taken::No:
        holder = ReadHolder(file.Get());
        return nullptr;
      case Taken::Unsupported:
        lock->Hold(std::move(file));
        return lock;
      case Taken::Yes:
        if (IsStill(path, file.Get())) {
          const int descriptor = file.Get();
          lock->Hold(std::move(file));
          WriteHolder(descriptor, waitsForUser);
          return lock;
        }
    }
  }
}

std::shared_ptr<void> HoldHostFolder(const std::filesystem::path& folder, std::string_view shownPath) {
  using std::chrono::milliseconds;
  constexpr milliseconds kLongest{30000};
  thread_local std::map<std::filesystem::path, std::weak_ptr<void>> held;
  if (const auto already = held.find(folder); already != held.end()) {
    if (std::shared_ptr<void> lock = already->second.lock()) {
      return lock;
    }
    held.erase(already);
  }
  const auto file = std::make_shared<Descriptor>(open(folder.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC));
  if (!*file) {
    return nullptr;
  }
  milliseconds waited{0};
  for (milliseconds pause{1};; pause = std::min(2 * pause, milliseconds(50))) {
    switch (TryLock(file->Get())) {
      case Taken::Yes:
        held[folder] = file;
        return file;
      case Taken::Unsupported:
        return nullptr;
      case Taken::No:
        if (waited >= kLongest) {
          throw MakeFileError(RuntimeError::PermissionDenied, "change", shownPath, kIsBeingChanged);
        }
        std::this_thread::sleep_for(pause);
        waited += pause;
    }
  }
}

}  // namespace parvex::posix
