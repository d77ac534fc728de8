#include "adapters/posix/native_system.h"

#include <errno.h>
#include <fcntl.h>
#include <pwd.h>
#include <stdio.h>
#include <stdlib.h>
#include <sys/file.h>
#include <sys/stat.h>
#include <sys/statvfs.h>
#include <time.h>
#include <unistd.h>

#include <algorithm>
#include <filesystem>
#include <system_error>

#include "adapters/posix/host_file.h"
#include "adapters/posix/host_replacement.h"
#include "adapters/posix/open_host_file.h"
#include "seams/automation_error.h"

namespace parvex::posix {
namespace {

constexpr mode_t kOwnFile = S_IRUSR | S_IWUSR;
constexpr mode_t kOwnFolder = S_IRWXU;

std::filesystem::path PathIn(std::string_view path) { return std::filesystem::path(path); }

// While it is open, it is in use.
class LockedFile : public HostSystem::File {
 public:
  explicit LockedFile(std::string_view path)
      : descriptor_(open(std::string(path).c_str(), O_RDWR | O_CREAT | O_EXCL | O_CLOEXEC, kOwnFile)),
        bytes_(path, descriptor_) {
    if (descriptor_ < 0) {
      RaiseSystemError(errno, "write", path);
    }
    flock(descriptor_, LOCK_EX | LOCK_NB);
  }
  ~LockedFile() override {
    bytes_.Finish();
    close(descriptor_);
  }
  LockedFile(const LockedFile&) = delete;
  LockedFile& operator=(const LockedFile&) = delete;

  void Append(std::string_view bytes) override { bytes_.Append(bytes); }
  void Overwrite(std::uint64_t at, std::string_view bytes) override { bytes_.Overwrite(at, bytes); }
  void Truncate(std::uint64_t size) override { bytes_.Truncate(size); }
  std::string Read(std::uint64_t at, std::size_t most) override { return bytes_.Read(at, most); }

 private:
  int descriptor_;
  OpenHostFile bytes_;
};

std::string TimeText(const char* format, const std::tm& time) {
  char text[32];
  text[strftime(text, sizeof text, format, &time)] = '\0';
  return text;
}

void RaiseIf(const std::error_code& failed, std::string_view doing, std::string_view path) {
  if (failed) {
    RaiseSystemError(failed.value(), doing, path);
  }
}

}  // namespace

HostSystem::Facts NativeSystem::ThisProgram() {
  std::error_code none;
  return {.platform = "machine folder",
          .bitness = 8 * sizeof(void*),
          .codePage = 1252,
          .program = std::filesystem::read_symlink("/proc/self/exe", none).string(),
          .processId = static_cast<std::uint32_t>(getpid()),
          .xmlEngine = "libxml2",
          .databaseEngine = "the built-in Jet reader"};
}

std::uint32_t NativeSystem::ThreadId() { return static_cast<std::uint32_t>(gettid()); }

std::optional<std::string> NativeSystem::Variable(std::string_view name) {
  const char* value = getenv(std::string(name).c_str());
  return value == nullptr || *value == '\0' ? std::nullopt : std::optional<std::string>(value);
}

std::string NativeSystem::DefaultFolder() {
  if (const std::optional<std::string> state = Variable("XDG_STATE_HOME")) {
    return *state + "/parvex/recordings";
  }
  std::string home = Variable("HOME").value_or("");
  if (const passwd* user = getpwuid(getuid()); home.empty() && user != nullptr && user->pw_dir != nullptr) {
    home = user->pw_dir;
  }
  if (home.empty()) {  // a folder that others can foresee would not be this user's alone
    throw MakeRuntimeError(RuntimeError::PathNotFound, "this user has no folder for recordings: name one");
  }
  return home + "/.local/state/parvex/recordings";
}

std::string NativeSystem::LocalTime() {
  const std::time_t now = time(nullptr);
  std::tm parts = {};
  localtime_r(&now, &parts);
  return TimeText("%Y%m%d-%H%M%S", parts);
}

std::string NativeSystem::UniversalTime() {
  const std::time_t now = time(nullptr);
  std::tm parts = {};
  gmtime_r(&now, &parts);
  return TimeText("%Y-%m-%dT%H:%M:%SZ", parts);
}

std::uint64_t NativeSystem::Microseconds() {
  timespec now = {};
  clock_gettime(CLOCK_MONOTONIC, &now);
  return static_cast<std::uint64_t>(now.tv_sec) * 1'000'000 + static_cast<std::uint64_t>(now.tv_nsec) / 1'000;
}

void NativeSystem::CreateFolders(std::string_view path) {
  std::error_code failed;
  std::filesystem::create_directories(PathIn(path), failed);
  RaiseIf(failed, "make the folder", path);
}

bool NativeSystem::CreateNewFolder(std::string_view path) {
  if (mkdir(std::string(path).c_str(), kOwnFolder) == 0) {
    return true;
  }
  if (errno != EEXIST) {
    RaiseSystemError(errno, "make the folder", path);
  }
  return false;
}

std::unique_ptr<HostSystem::File> NativeSystem::MakeFile(std::string_view path) {
  return std::make_unique<LockedFile>(path);
}

std::unique_ptr<HostSystem::Replacement> NativeSystem::MakeReplacement(std::string_view path, Readers readers) {
  return MakeHostReplacement(path, readers);
}

bool NativeSystem::IsInUse(std::string_view path) {
  const int descriptor = open(std::string(path).c_str(), O_RDONLY | O_CLOEXEC | O_NONBLOCK);
  if (descriptor < 0) {
    return false;
  }
  const bool isLocked = flock(descriptor, LOCK_EX | LOCK_NB) != 0 && errno == EWOULDBLOCK;
  close(descriptor);
  return isLocked;
}

bool NativeSystem::IsFolder(std::string_view path) {
  std::error_code none;
  return std::filesystem::is_directory(PathIn(path), none);
}

std::uint64_t NativeSystem::SizeOf(std::string_view path) {
  std::error_code none;
  return std::filesystem::is_regular_file(PathIn(path), none) ? std::filesystem::file_size(PathIn(path), none) : 0;
}

std::string NativeSystem::ReadAll(std::string_view path) { return ReadHostFile(PathIn(path), path); }

void NativeSystem::WriteAll(std::string_view path, std::string_view bytes) {
  WriteHostFile(PathIn(path), bytes, IfPresent::Replace, path);
}

void NativeSystem::Rename(std::string_view from, std::string_view to) {
  if (rename(std::string(from).c_str(), std::string(to).c_str()) != 0) {
    RaiseSystemError(errno, "rename", from);
  }
}

void NativeSystem::Remove(std::string_view path) { RemoveHostFile(PathIn(path), path); }

void NativeSystem::RemoveFolder(std::string_view path) {
  std::error_code failed;
  std::filesystem::remove_all(PathIn(path), failed);
  RaiseIf(failed, "remove the folder", path);
}

std::vector<HostSystem::Entry> NativeSystem::List(std::string_view folder) {
  std::vector<Entry> entries;
  std::error_code ended;
  for (std::filesystem::directory_iterator entry(PathIn(folder), ended), end; !ended && entry != end;
       entry.increment(ended)) {
    std::error_code none;
    const bool isFolder = entry->is_directory(none);
    const bool isFile = entry->is_regular_file(none);
    const bool isPlain = (isFile || isFolder) && !entry->is_symlink(none);
    entries.push_back({entry->path().filename().string(), isFile ? entry->file_size(none) : 0, isFolder, isPlain});
  }
  return entries;
}

}  // namespace parvex::posix
