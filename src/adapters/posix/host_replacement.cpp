#include "adapters/posix/host_replacement.h"

#include <errno.h>
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <filesystem>
#include <optional>

#include "adapters/posix/host_file.h"
#include "adapters/posix/leftovers.h"
#include "adapters/posix/new_file.h"
#include "adapters/posix/open_host_file.h"
#include "seams/automation_error.h"
#include "seams/streamed_replacement.h"

namespace parvex::posix {
namespace {

void RaiseIfFailed(int code, std::string_view path) {
  if (code != 0) {
    RaiseSystemError(code, "write", path);
  }
}

class ReplacingFile : public HostSystem::Replacement {
 public:
  ReplacingFile(std::string_view path, const struct stat* replaced, mode_t mode)
      : path_(path), file_(MadeBeside(path, replaced, mode)), bytes_(path, file_->Descriptor()) {}

  void Append(std::string_view bytes) override { bytes_.Append(bytes); }
  void Overwrite(std::uint64_t at, std::string_view bytes) override { bytes_.Overwrite(at, bytes); }
  void Truncate(std::uint64_t size) override { bytes_.Truncate(size); }
  std::string Read(std::uint64_t at, std::size_t most) override { return bytes_.Read(at, most); }

  void TakeName() override {
    bytes_.Finish();
    RaiseIfFailed(file_->Flush(), path_);
    RaiseIfFailed(file_->TakeName(IfPresent::Replace), path_);
    RaiseIfFailed(file_->FlushFolder(), path_);
  }

 private:
  static std::unique_ptr<NewFile> MadeBeside(std::string_view path, const struct stat* replaced, mode_t mode) {
    auto file = std::make_unique<NewFile>(path);
    const int failed = file->Make(replaced, mode);
    if (failed == ENOENT) {
      throw MakeFileError(RuntimeError::PathNotFound, "write", path);
    }
    RaiseIfFailed(failed, path);
    file->Hold();
    return file;
  }

  std::string path_;
  std::unique_ptr<NewFile> file_;
  OpenHostFile bytes_;
};

class StreamedFile : public StreamedReplacement {
 public:
  explicit StreamedFile(std::string_view path)
      : path_(path), descriptor_(open(path_.c_str(), O_WRONLY | O_APPEND | O_CLOEXEC)) {
    RaiseIfFailed(descriptor_ < 0 ? errno : 0, path_);
  }
  ~StreamedFile() override { close(descriptor_); }
  StreamedFile(const StreamedFile&) = delete;
  StreamedFile& operator=(const StreamedFile&) = delete;

  void TakeName() override {
    for (std::string_view left = Bytes(); !left.empty();) {
      const ssize_t written = write(descriptor_, left.data(), left.size());
      RaiseIfFailed(written < 0 && errno != EINTR ? errno : 0, path_);
      left.remove_prefix(written < 0 ? 0 : static_cast<std::size_t>(written));
    }
  }

 private:
  std::string path_;
  int descriptor_;
};

bool IsOfSystem(std::string_view path) { return path.starts_with("/dev/") || path.starts_with("/proc/"); }

bool IsStream(const struct stat& status) { return !S_ISREG(status.st_mode) && !S_ISDIR(status.st_mode); }

}  // namespace

std::unique_ptr<HostSystem::Replacement> MakeHostReplacement(std::string_view path, HostSystem::Readers readers) {
  const std::filesystem::path host(path);
  struct stat status = {};
  const bool isPresent = lstat(host.c_str(), &status) == 0;
  struct stat behindLink = {};
  if (isPresent && S_ISLNK(status.st_mode) && stat(host.c_str(), &behindLink) == 0 &&
      (IsStream(behindLink) || (IsOfSystem(path) && !S_ISDIR(behindLink.st_mode)))) {
    return std::make_unique<StreamedFile>(path);
  }
  if (isPresent && S_ISLNK(status.st_mode)) {
    throw MakeFileError(RuntimeError::PathFileAccess, "write", path, kIsLink);
  }
  if (isPresent && IsStream(status)) {
    return std::make_unique<StreamedFile>(path);
  }
  if (isPresent) {
    RefuseToReplace(status, path);
  }
  RemoveLeftovers(host.parent_path());
  const bool ownerOnly = readers == HostSystem::Readers::OwnerOnly;
  return std::make_unique<ReplacingFile>(path, isPresent && !ownerOnly ? &status : nullptr, ownerOnly ? 0600 : 0666);
}

}  // namespace parvex::posix
