#include "adapters/posix/machine_folder.h"

#include <dirent.h>
#include <limits.h>
#include <stdlib.h>
#include <sys/stat.h>

#include <memory>

#include "seams/automation_error.h"

namespace parvex::posix {
namespace {

constexpr std::size_t kMostFoundPaths = 10'000;

bool IsHostFolder(const std::string& host) {
  struct stat status;
  return stat(host.c_str(), &status) == 0 && S_ISDIR(status.st_mode);
}

std::optional<std::string> RealPath(const std::string& host) {
  const std::unique_ptr<char, void (*)(void*)> real(realpath(host.c_str(), nullptr), free);
  return real ? std::optional<std::string>(real.get()) : std::nullopt;
}

}  // namespace

MachineFolder::MachineFolder(const std::filesystem::path& root) : root_(std::filesystem::absolute(root)) {
  if (!root_.has_filename()) {
    root_ = root_.parent_path();
  }
  if (!IsHostFolder(root_.string())) {
    throw MakeRuntimeError(RuntimeError::PathNotFound,
                           FailureText("no machine in the folder", root.string(), "it does not exist"));
  }
}

std::optional<std::filesystem::path> MachineFolder::Resolve(std::string_view path) {
  const std::optional<MachinePath> parsed = MachinePath::Parse(path);
  return parsed ? Resolve(*parsed) : std::nullopt;
}

std::optional<std::filesystem::path> MachineFolder::Resolve(const MachinePath& path) {
  const std::optional<Found> found = Find(path);
  return found ? std::optional<std::filesystem::path>(found->host) : std::nullopt;
}

bool MachineFolder::IsFile(std::string_view path) {
  const std::optional<MachinePath> parsed = MachinePath::Parse(path);
  const std::optional<Found> found = parsed ? Find(*parsed) : std::nullopt;
  return found && S_ISREG(found->status.st_mode);
}

bool MachineFolder::IsFolder(std::string_view path) {
  const std::optional<MachinePath> parsed = MachinePath::Parse(path);
  const std::optional<Found> found = parsed ? Find(*parsed) : std::nullopt;
  return found && found->IsFolder();
}

std::filesystem::path MachineFolder::Target(std::string_view path, std::string_view doing) {
  const std::optional<MachinePath> parsed = MachinePath::Parse(path);
  if (!parsed) {
    throw MakeFileError(RuntimeError::PathFileAccess, doing, path, kNoPossibleName);
  }
  return Target(*parsed, doing);
}

std::filesystem::path MachineFolder::Target(const MachinePath& path, std::string_view doing) {
  const std::optional<std::filesystem::path> folder = Resolve(path.Parent());
  if (!folder) {
    throw MakeFileError(RuntimeError::PathNotFound, doing, path.Text());
  }
  const std::optional<Found> existing = Find(path, path.names.size());
  if (path.endsInSeparator || path.names.empty() || (existing && existing->IsFolder())) {
    throw MakeFileError(RuntimeError::PathFileAccess, doing, path.Text(), kIsFolder);
  }
  RefuseOutsideOfDrive(path, existing ? std::filesystem::path(existing->host) : *folder);
  return existing ? std::filesystem::path(existing->host) : *folder / path.names.back();
}

void MachineFolder::Changing(const std::filesystem::path& host) {
  folderNames_.BeforeChange(host.parent_path().string());
}

void MachineFolder::Added(const std::filesystem::path& host) {
  folderNames_.AfterAdding(host.parent_path().string(), host.filename().string());
}

void MachineFolder::Removed(const std::filesystem::path& host) {
  folderNames_.AfterRemoving(host.parent_path().string(), host.filename().string());
}

void MachineFolder::RefuseOutsideOfDrive(const MachinePath& path, const std::filesystem::path& host) {
  struct stat status = {};
  const bool isLink = lstat(host.c_str(), &status) == 0 && S_ISLNK(status.st_mode);
  const std::string folder = (S_ISDIR(status.st_mode) ? host : host.parent_path()).string();
  const std::optional<FolderIdentity> identity = IdentityOf(folder);
  const auto known = inside_.find(folder);
  if (!isLink && identity && known != inside_.end() && known->second == *identity) {
    return;
  }
  RefuseRealPathOutsideOfDrive(path, host);
  if (!isLink && identity) {
    if (inside_.size() >= kMostFoundPaths) {
      inside_.clear();
    }
    inside_[folder] = *identity;
  }
}

std::optional<MachineFolder::FolderIdentity> MachineFolder::IdentityOf(const std::string& folder) {
  struct stat status;
  return stat(folder.c_str(), &status) == 0 ? std::optional(FolderIdentity{status.st_dev, status.st_ino})
                                            : std::nullopt;
}

void MachineFolder::RefuseRealPathOutsideOfDrive(const MachinePath& path, const std::filesystem::path& host) const {
  const std::optional<std::string> drive = RealPath(DriveFolder(path.drive));
  const std::optional<std::string> real = RealPath(host.string());
  if (!drive || !real || !(*real + "/").starts_with(*drive + "/")) {
    throw MakeFileError(RuntimeError::PathFileAccess, "change", path.Text(), "a link leads out of its drive");
  }
}

std::string MachineFolder::DriveFolder(char drive) const {
  return root_.string() + "/drive_" + static_cast<char>(drive | 0x20);
}

// What all of a path means; a final separator asks for a folder.
std::optional<MachineFolder::Found> MachineFolder::Find(const MachinePath& path) {
  std::optional<Found> found = Find(path, path.names.size());
  return path.endsInSeparator && found && !found->IsFolder() ? std::nullopt : std::move(found);
}

// The first `depth` names of a path.
std::optional<MachineFolder::Found> MachineFolder::Find(const MachinePath& path, std::size_t depth) {
  std::string exact = DriveFolder(path.drive);
  for (std::size_t i = 0; i < depth; ++i) {
    exact.append("/").append(path.names[i]);
  }
  struct stat status;
  if (stat(exact.c_str(), &status) == 0) {
    return Found{std::move(exact), status};
  }
  if (depth == 0) {
    return std::nullopt;
  }
  if (const auto known = found_.find(exact); known != found_.end()) {
    if (stat(known->second.c_str(), &status) == 0) {
      return Found{known->second, status};
    }
    found_.erase(known);
  }
  const std::optional<Found> folder = Find(path, depth - 1);
  const std::optional<std::string> name =
      folder ? folderNames_.Find(folder->host, folder->status, path.names[depth - 1]) : std::nullopt;
  std::string host = name ? folder->host + "/" + *name : std::string();
  if (!name || stat(host.c_str(), &status) != 0) {
    return std::nullopt;
  }
  if (found_.size() >= kMostFoundPaths) {
    found_.clear();
  }
  found_.insert_or_assign(std::move(exact), host);
  return Found{std::move(host), status};
}

}  // namespace parvex::posix
