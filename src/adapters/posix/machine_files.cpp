#include "adapters/posix/machine_files.h"

#include <errno.h>
#include <sys/stat.h>

#include <algorithm>
#include <cstdint>
#include <system_error>
#include <utility>

#include "adapters/posix/file_version.h"
#include "adapters/posix/folder_locks.h"
#include "adapters/posix/host_file.h"
#include "adapters/posix/leftovers.h"
#include "formats/text/file_names.h"
#include "formats/text/letter_case.h"
#include "formats/text/unicode.h"
#include "seams/automation_error.h"

namespace parvex::posix {
namespace {

constexpr std::string_view kMakeFolder = "make the folder";
constexpr std::string_view kRemoveFolder = "remove the folder";

enum class Kind { File, Folder };

bool Is(Kind kind, const std::filesystem::path& host) {
  struct stat status;
  return stat(host.c_str(), &status) == 0 && (kind == Kind::File ? S_ISREG(status.st_mode) : S_ISDIR(status.st_mode));
}

bool Is(Kind kind, const std::optional<std::filesystem::path>& host) { return host && Is(kind, *host); }

// Whether a file of its own, which may be replaced, holds these bytes. An export that is repeated unpacks the same
// entries again, and making a file costs more than reading one, where many were replaced shortly before much more.
bool HoldsAlready(const MachineFolder::Place& place, std::string_view bytes) {
  return place.existing && S_ISREG(place.existing->st_mode) && (place.existing->st_mode & 0222) != 0 &&
         static_cast<std::uint64_t>(place.existing->st_size) == bytes.size() &&
         ReadHostFileIfPlain(place.host) == bytes;
}

// Matches from the last * on, as far as needed: no recursion, so that no pattern is slow.
bool Matches(std::u16string_view name, std::u16string_view pattern) {
  std::size_t n = 0;
  std::size_t p = 0;
  std::size_t star = std::u16string_view::npos;
  std::size_t starName = 0;
  for (;;) {
    const bool nameEnds = n == name.size();
    if (p < pattern.size() && pattern[p] == u'*') {
      star = p++;
      starName = n;
    } else if (nameEnds && (p == pattern.size() || pattern.substr(p) == u".*")) {
      return true;
    } else if (p < pattern.size() && pattern[p] == u'?') {
      n += nameEnds || name[n] == u'.' ? 0 : 1;
      ++p;
    } else if (!nameEnds && p < pattern.size() && pattern[p] == name[n]) {
      ++n;
      ++p;
    } else if (star != std::u16string_view::npos && starName < name.size()) {
      n = ++starName;
      p = star + 1;
    } else {
      return false;
    }
  }
}

// The names that the machine sees in a folder, in the order of their upper-cased form. A name that a file of the
// machine cannot have is not seen; of names that differ in letter case only, the first is.
std::vector<std::string> List(const std::filesystem::path& folder, Kind kind, std::u16string_view foldedPattern) {
  std::vector<std::pair<std::string, std::string>> found;  // folded, as written
  std::error_code ended;
  for (std::filesystem::directory_iterator entry(folder, ended), end; !ended && entry != end; entry.increment(ended)) {
    std::string name = entry->path().filename().string();
    std::error_code unreadable;
    const bool wanted = kind == Kind::File ? entry->is_regular_file(unreadable) : entry->is_directory(unreadable);
    if (!wanted || !IsFileName(name)) {
      continue;
    }
    std::string folded = FoldName(name);
    if (Matches(ToUtf16(folded), foldedPattern)) {
      found.emplace_back(std::move(folded), std::move(name));
    }
  }
  std::sort(found.begin(), found.end());
  found.erase(std::unique(found.begin(), found.end(), [](const auto& a, const auto& b) { return a.first == b.first; }),
              found.end());
  std::vector<std::string> names;
  names.reserve(found.size());
  for (auto& [folded, name] : found) {
    names.push_back(std::move(name));
  }
  return names;
}

}  // namespace

bool MatchesPattern(std::string_view name, std::string_view pattern) {
  return Matches(ToUtf16(FoldName(name)), ToUtf16(FoldName(pattern)));
}

bool MachineFiles::IsFile(std::string_view path) { return folder_.IsFile(path); }

bool MachineFiles::IsFolder(std::string_view path) { return folder_.IsFolder(path); }

std::vector<std::string> MachineFiles::ListFiles(std::string_view pattern) {
  std::size_t split = pattern.find_last_of("\\/:");
  split = split == std::string_view::npos ? 0 : split + 1;
  const std::string_view last = pattern.substr(split);
  if (!last.empty() && last.find_first_of("*?") == std::string_view::npos) {
    const std::optional<std::filesystem::path> host = folder_.Resolve(pattern);
    return Is(Kind::File, host) ? std::vector<std::string>{host->filename().string()} : std::vector<std::string>{};
  }
  const std::string_view folder = split == 0 ? "." : pattern.substr(0, split);
  const std::optional<std::filesystem::path> host = pattern.empty() ? std::nullopt : folder_.Resolve(folder);
  return host ? List(*host, Kind::File, last.empty() ? u"*" : ToUtf16(FoldName(last))) : std::vector<std::string>{};
}

std::vector<std::string> MachineFiles::ListFolders(std::string_view folder) {
  const std::optional<std::filesystem::path> host = folder_.Resolve(folder);
  return host ? List(*host, Kind::Folder, u"*") : std::vector<std::string>{};
}

std::string MachineFiles::ReadAll(std::string_view path) { return ReadHostFile(Existing(path, "read"), path); }

std::optional<std::string> MachineFiles::ReadIfFile(std::string_view path) {
  const std::optional<MachinePath> parsed = MachinePath::Parse(path);
  if (parsed && !parsed->endsInSeparator) {
    if (std::optional<std::string> bytes = ReadHostFileIfPlain(folder_.Exact(*parsed))) {
      plain_ = path;
      return bytes;
    }
  }
  return Files::ReadIfFile(path);
}

std::string MachineFiles::ReadPart(std::string_view path, std::uint64_t at, std::size_t most) {
  return ReadPartOfHostFile(Existing(path, "read"), at, most, path);
}

std::optional<std::string> MachineFiles::VersionOf(std::string_view path) {
  const std::optional<MachinePath> parsed = MachinePath::Parse(path);
  const std::optional<std::filesystem::path> host = parsed ? folder_.Resolve(*parsed) : std::nullopt;
  const std::optional<FileVersion> version = host ? posix::VersionOf(*host) : std::nullopt;
  if (!version || !IsSettled(*version)) {
    return std::nullopt;
  }
  std::string text;
  for (const std::int64_t part : {static_cast<std::int64_t>(version->device), static_cast<std::int64_t>(version->inode),
                                  version->size, version->modifiedNanoseconds, version->changedNanoseconds}) {
    text += std::to_string(part) + " ";
  }
  return text;
}

void MachineFiles::Replace(std::string_view path, std::string_view bytes) {
  Write(path, bytes, IfPresent::Replace, Durability::OfSystem);
}

void MachineFiles::ReplaceOnDisk(std::string_view path, std::string_view bytes) {
  Write(path, bytes, IfPresent::Replace, Durability::OnDisk);
}

void MachineFiles::CreateNew(std::string_view path, std::string_view bytes) {
  Write(path, bytes, IfPresent::Refuse, Durability::OfSystem);
}

std::shared_ptr<void> MachineFiles::HoldForChange(std::string_view path) {
  const std::optional<MachinePath> parsed = MachinePath::Parse(path);
  const std::optional<std::filesystem::path> folder = parsed ? folder_.Resolve(parsed->Parent()) : std::nullopt;
  return folder ? HoldHostFolder(*folder, path) : nullptr;
}

void MachineFiles::Remove(std::string_view path) {
  Existing(path, "remove");
  const MachineFolder::Place place = folder_.PlaceOf(path, "remove");
  MachineFolder::Change change(folder_, place);
  RemoveHostFile(place.host, path);
  change.Removed();
}

void MachineFiles::CreateFolder(std::string_view path) {
  std::optional<MachinePath> parsed = MachinePath::Parse(path);
  if (!parsed) {
    throw MakeFileError(RuntimeError::PathFileAccess, kMakeFolder, path, kNoPossibleName);
  }
  parsed->endsInSeparator = false;
  const std::optional<std::filesystem::path> host = folder_.Resolve(*parsed);
  if (Is(Kind::Folder, host)) {
    return;
  }
  if (host) {
    throw MakeFileError(RuntimeError::PathFileAccess, kMakeFolder, parsed->Text(), kNameOfFile);
  }
  if (parsed->names.empty()) {
    throw MakeFileError(RuntimeError::PathNotFound, kMakeFolder, path, "there is no such drive");
  }
  if (const MachinePath parent = parsed->Parent(); !parent.names.empty()) {
    CreateFolder(parent.Text());
  }
  const MachineFolder::Place place = folder_.PlaceOf(*parsed, kMakeFolder);
  MachineFolder::Change change(folder_, place);
  std::error_code failed;
  if (std::filesystem::create_directory(place.host, failed)) {
    change.AddedFolder();
    NoteWithoutLeftovers(place.host);
  } else if (failed) {
    RaiseSystemError(failed.value(), kMakeFolder, path);
  }
}

void MachineFiles::RemoveFolder(std::string_view path) {
  std::optional<MachinePath> parsed = MachinePath::Parse(path);
  const std::optional<std::filesystem::path> host = parsed ? folder_.Resolve(*parsed) : std::nullopt;
  if (!host) {
    throw MakeFileError(RuntimeError::PathNotFound, kRemoveFolder, path, "it does not exist");
  }
  if (!Is(Kind::Folder, *host) || parsed->names.empty()) {
    throw MakeFileError(RuntimeError::PathFileAccess, kRemoveFolder, path, kIsNoFolder);
  }
  const MachineFolder::Place place = folder_.PlaceOfFolder(*parsed);
  MachineFolder::Change change(folder_, place);
  std::error_code failed;
  std::filesystem::remove_all(place.host, failed);
  if (failed) {
    RaiseSystemError(failed.value(), kRemoveFolder, path);
  }
  change.Removed();
}

void MachineFiles::Write(std::string_view path, std::string_view bytes, IfPresent ifPresent, Durability durability) {
  MachineFolder::Place place = folder_.PlaceOf(path);
  if (ifPresent == IfPresent::Replace && durability == Durability::OfSystem && HoldsAlready(place, bytes)) {
    return;
  }
  if (RemoveLeftovers(place.folder)) {
    place = folder_.PlaceOf(path);  // the folder is another version of itself
  }
  MachineFolder::Change change(folder_, place);
  WriteHostFile(place.host, place.existing, bytes, ifPresent, path, durability);
  change.AddedFile();
}

// The host path of what exists; not found (53), or path not found (76) when its folder does not exist either.
std::filesystem::path MachineFiles::Existing(std::string_view path, std::string_view doing) {
  const std::optional<MachinePath> parsed = MachinePath::Parse(path);
  const std::optional<std::filesystem::path> host = parsed ? folder_.Resolve(*parsed) : std::nullopt;
  if (host) {
    return *host;
  }
  const bool folderExists = !parsed || folder_.Resolve(parsed->Parent());
  throw MakeFileError(folderExists ? RuntimeError::FileNotFound : RuntimeError::PathNotFound, doing, path);
}

}  // namespace parvex::posix
