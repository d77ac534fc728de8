#include "adapters/posix/machine_folder.h"

#include <dirent.h>
#include <limits.h>
#include <locale.h>
#include <stdlib.h>
#include <sys/stat.h>
#include <wctype.h>

#include <algorithm>
#include <array>
#include <memory>

#include "formats/text/text.h"
#include "seams/automation_error.h"

namespace parvex::posix {
namespace {

constexpr std::size_t kMostFoundPaths = 10'000;

bool IsSeparator(char c) { return c == '\\' || c == '/'; }

bool IsLetter(char c) { return (c >= 'A' && c <= 'Z') || (c >= 'a' && c <= 'z'); }

bool IsAscii(std::string_view text) {
  return std::all_of(text.begin(), text.end(), [](char c) { return static_cast<unsigned char>(c) < 0x80; });
}

// Names of devices stay devices with an extension ("nul.txt") and in every folder.
bool IsDeviceName(std::string_view name) {
  static constexpr std::array<std::string_view, 6> kDevices = {"CON", "PRN", "AUX", "NUL", "CONIN$", "CONOUT$"};
  const std::string stem = FoldName(TrimBlanks(name.substr(0, name.find('.'))));
  if (stem.size() == 4 && (stem.starts_with("COM") || stem.starts_with("LPT"))) {
    return stem[3] >= '1' && stem[3] <= '9';
  }
  return std::find(kDevices.begin(), kDevices.end(), stem) != kDevices.end();
}

std::string_view WithoutTrailingDotsAndBlanks(std::string_view name) {
  const std::size_t last = name.find_last_not_of(". ");
  return name.substr(0, last == std::string_view::npos ? 0 : last + 1);
}

// One component between separators. False when no file can be called that.
bool AppendComponent(std::vector<std::string>& names, std::string_view component) {
  if (component.empty() || component == ".") {
    return true;
  }
  if (component == "..") {
    if (!names.empty()) {
      names.pop_back();
    }
    return true;
  }
  const std::string_view name = WithoutTrailingDotsAndBlanks(component);
  if (!IsFileName(name)) {
    return false;
  }
  names.emplace_back(name);
  return true;
}

bool IsHostFolder(const std::string& host) {
  struct stat status;
  return stat(host.c_str(), &status) == 0 && S_ISDIR(status.st_mode);
}

std::optional<std::string> RealPath(const std::string& host) {
  const std::unique_ptr<char, void (*)(void*)> real(realpath(host.c_str(), nullptr), free);
  return real ? std::optional<std::string>(real.get()) : std::nullopt;
}

}  // namespace

std::optional<MachinePath> MachinePath::Parse(std::string_view text) {
  MachinePath path;
  if (text.empty() || (text.size() >= 2 && IsSeparator(text[0]) && IsSeparator(text[1]))) {
    return std::nullopt;
  }
  if (text.size() >= 2 && text[1] == ':' && IsLetter(text[0])) {
    path.drive = static_cast<char>(text[0] & ~0x20);
    text.remove_prefix(2);
  }
  path.endsInSeparator = !text.empty() && IsSeparator(text.back());
  while (!text.empty()) {
    const std::size_t end = std::min(text.find_first_of("\\/"), text.size());
    if (!AppendComponent(path.names, text.substr(0, end))) {
      return std::nullopt;
    }
    text.remove_prefix(std::min(end + 1, text.size()));
  }
  return path;
}

std::string MachinePath::Text() const {
  std::string text{drive, ':'};
  for (const std::string& name : names) {
    text.append("\\").append(name);
  }
  return names.empty() ? text + "\\" : text;
}

MachinePath MachinePath::Parent() const {
  MachinePath parent{drive, names, true};
  if (!names.empty()) {
    parent.names.pop_back();
  }
  return parent;
}

bool IsFileName(std::string_view name) {
  const auto refused = [](char c) {
    return static_cast<unsigned char>(c) < 0x20 || std::string_view("\\/:*?\"<>|").find(c) != std::string_view::npos;
  };
  return !name.empty() && name == WithoutTrailingDotsAndBlanks(name) &&
         std::none_of(name.begin(), name.end(), refused) && !IsDeviceName(name);
}

std::string FoldName(std::string_view name) {
  // The letters of the C library's own UTF-8 locale, whatever locale the process runs in.
  static const locale_t letters = newlocale(LC_CTYPE_MASK, "C.UTF-8", nullptr);
  if (letters == nullptr || IsAscii(name)) {
    return ToUpper(name);
  }
  std::u16string units = ToUtf16(name);
  for (char16_t& unit : units) {
    const wint_t upper = towupper_l(unit, letters);
    unit = upper <= 0xFFFF ? static_cast<char16_t>(upper) : unit;
  }
  return FromUtf16(units);
}

MachineFolder::MachineFolder(const std::filesystem::path& root) : root_(std::filesystem::absolute(root)) {
  if (!root_.has_filename()) {
    root_ = root_.parent_path();
  }
  if (!IsHostFolder(root_.string())) {
    throw MakeRuntimeError(RuntimeError::PathNotFound, "the machine folder " + root.string() + " does not exist");
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

std::filesystem::path MachineFolder::Target(std::string_view path) {
  const std::optional<MachinePath> parsed = MachinePath::Parse(path);
  if (!parsed) {
    throw MakeRuntimeError(RuntimeError::PathFileAccess, std::string(path) + " cannot be the path of a file");
  }
  return Target(*parsed);
}

std::filesystem::path MachineFolder::Target(const MachinePath& path) {
  const std::optional<std::filesystem::path> folder = Resolve(path.Parent());
  if (!folder) {
    throw MakeRuntimeError(RuntimeError::PathNotFound, "the folder of " + path.Text() + " does not exist");
  }
  const std::optional<Found> existing = Find(path, path.names.size());
  if (path.endsInSeparator || path.names.empty() || (existing && existing->IsFolder())) {
    throw MakeRuntimeError(RuntimeError::PathFileAccess, path.Text() + " is a folder");
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
    throw MakeRuntimeError(RuntimeError::PathFileAccess,
                           path.Text() + " leads out of drive " + path.drive + " by a link and is not written");
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
