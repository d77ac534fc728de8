#include "adapters/posix/machine_folder.h"

#include <stdlib.h>
#include <sys/stat.h>

#include <memory>
#include <utility>

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

bool MachineFolder::IsLink(std::string_view path) {
  const std::optional<MachinePath> parsed = MachinePath::Parse(path);
  const std::optional<Found> found = parsed ? Find(*parsed) : std::nullopt;
  return found && found->isLink;
}

std::filesystem::path MachineFolder::Target(std::string_view path, std::string_view doing) {
  return PlaceOf(path, doing).host;
}

MachineFolder::Place MachineFolder::PlaceOf(std::string_view path, std::string_view doing) {
  const std::optional<MachinePath> parsed = MachinePath::Parse(path);
  if (!parsed) {
    throw MakeFileError(RuntimeError::PathFileAccess, doing, path, kNoPossibleName);
  }
  return PlaceOf(*parsed, doing);
}

MachineFolder::Place MachineFolder::PlaceOf(const MachinePath& path, std::string_view doing) {
  const std::optional<Found> folder = Find(path.Parent());
  if (!folder) {
    throw MakeFileError(RuntimeError::PathNotFound, doing, path.Text());
  }
  const std::optional<Found> existing = Find(path, path.names.size(), &*folder);
  if (path.endsInSeparator || path.names.empty() || (existing && existing->IsFolder())) {
    throw MakeFileError(RuntimeError::PathFileAccess, doing, path.Text(), kIsFolder);
  }
  if (existing) {
    return PlaceOf(path, *existing, *folder);
  }
  RefuseFolderOutsideOfDrive(path, folder->host, folder->status);
  return {folder->host + "/" + path.names.back(), folder->host, folder->status, std::nullopt};
}

MachineFolder::Place MachineFolder::PlaceOfFolder(const MachinePath& path) {
  const std::optional<Found> folder = Find(path.Parent());
  const std::optional<Found> existing = folder ? Find(path, path.names.size(), &*folder) : std::nullopt;
  if (!existing) {
    throw MakeFileError(RuntimeError::PathNotFound, "find", path.Text());
  }
  return PlaceOf(path, {existing->host, existing->status, false}, *folder);
}

// Of something that exists. `above` is its folder, unless there are several whose names differ in letter case only.
MachineFolder::Place MachineFolder::PlaceOf(const MachinePath& path, const Found& existing, const Found& above) {
  if (existing.isLink) {
    RefuseRealPathOutsideOfDrive(path, existing.host);
  }
  Place place{existing.host, above.host, above.status, existing.status};
  if (std::string holder = place.host.parent_path().string(); holder != above.host) {
    place.folder = std::move(holder);
    if (stat(place.folder.c_str(), &place.folderStatus) != 0) {
      throw MakeFileError(RuntimeError::PathNotFound, "find", path.Text());
    }
  }
  RefuseFolderOutsideOfDrive(path, place.folder, place.folderStatus);
  return place;
}

MachineFolder::Change::Change(MachineFolder& machine, const Place& place)
    : names_(machine.folderNames_), place_(place) {
  names_.BeforeChange(place.folder, place.folderStatus);
}

MachineFolder::Change::~Change() {
  if (!isOver_) {
    names_.AfterFailing(place_.folder);
  }
}

void MachineFolder::Change::AddedFile() {
  isOver_ = true;
  names_.AfterAdding(place_.folder, Name());
}

void MachineFolder::Change::AddedFolder() {
  AddedFile();
  names_.Made(place_.host.string());
}

void MachineFolder::Change::Removed() {
  isOver_ = true;
  names_.Gone(place_.host.string());
  names_.AfterRemoving(place_.folder, Name());
}

// A folder was seen to lie inside the drive, or is looked at now.
void MachineFolder::RefuseFolderOutsideOfDrive(const MachinePath& path, const std::string& folder,
                                               const struct stat& status) {
  const FolderIdentity identity{status.st_dev, status.st_ino};
  const auto known = inside_.find(folder);
  if (known != inside_.end() && known->second == identity) {
    return;
  }
  RefuseRealPathOutsideOfDrive(path, folder);
  if (inside_.size() >= kMostFoundPaths) {
    inside_.clear();
  }
  inside_[folder] = identity;
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

std::string MachineFolder::Exact(const MachinePath& path, std::size_t depth) const {
  std::string exact = DriveFolder(path.drive);
  for (std::size_t i = 0; i < depth; ++i) {
    exact.append("/").append(path.names[i]);
  }
  return exact;
}

// What all of a path means; a final separator asks for a folder.
std::optional<MachineFolder::Found> MachineFolder::Find(const MachinePath& path) {
  std::optional<Found> found = Find(path, path.names.size());
  return path.endsInSeparator && found && !found->IsFolder() ? std::nullopt : std::move(found);
}

// The first `depth` names of a path; `above` is what one name less means, if that is known.
std::optional<MachineFolder::Found> MachineFolder::Find(const MachinePath& path, std::size_t depth,
                                                        const Found* above) {
  std::string exact = Exact(path, depth);
  if (std::optional<Found> found = Look(exact); found || depth == 0) {
    return found;
  }
  if (const auto known = found_.find(exact); known != found_.end()) {
    if (std::optional<Found> found = Look(known->second)) {
      return found;
    }
    found_.erase(known);
  }
  const std::optional<Found> looked = above == nullptr ? Find(path, depth - 1) : std::nullopt;
  const Found* const folder = looked ? &*looked : above;
  const std::optional<std::string> name =
      folder != nullptr ? folderNames_.Find(folder->host, folder->status, path.names[depth - 1]) : std::nullopt;
  std::optional<Found> found = name ? Look(folder->host + "/" + *name) : std::nullopt;
  if (found) {
    if (found_.size() >= kMostFoundPaths) {
      found_.clear();
    }
    found_.insert_or_assign(std::move(exact), found->host);
  }
  return found;
}

// What is there in this spelling; a link is followed.
std::optional<MachineFolder::Found> MachineFolder::Look(const std::string& host) {
  Found found{host, {}, false};
  if (lstat(host.c_str(), &found.status) != 0) {
    return std::nullopt;
  }
  found.isLink = S_ISLNK(found.status.st_mode);
  return !found.isLink || stat(host.c_str(), &found.status) == 0 ? std::optional(std::move(found)) : std::nullopt;
}

}  // namespace parvex::posix
