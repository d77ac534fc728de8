#include "adapters/windows/folder_files.h"

#include <windows.h>

#include <algorithm>
#include <cctype>

#include "adapters/windows/wide_text.h"
#include "formats/text/file_names.h"
#include "formats/text/machine_folder_places.h"
#include "formats/text/text.h"
#include "seams/automation_error.h"

namespace parvex::windows {
namespace {

constexpr std::string_view kMakeFolder = "make the folder";
constexpr std::string_view kRemoveFolder = "remove the folder";

bool EndsInSeparator(std::string_view path) { return path.ends_with('\\') || path.ends_with('/'); }

// In the form that takes paths of any length and in which the system changes nothing.
std::string Verbatim(std::string_view folder) {
  const std::wstring given = Widen(folder);
  std::wstring whole(GetFullPathNameW(given.c_str(), 0, nullptr, nullptr), L'\0');
  whole.resize(GetFullPathNameW(given.c_str(), static_cast<DWORD>(whole.size()), whole.data(), nullptr));
  std::string path = Narrow(whole);
  while (EndsInSeparator(path)) {
    path.pop_back();
  }
  if (path.starts_with("\\\\?\\")) {
    return path;
  }
  return path.starts_with("\\\\") ? "\\\\?\\UNC" + path.substr(1) : "\\\\?\\" + path;
}

// The last component of a pattern: what a name may hold, and * and ?
bool IsPattern(std::string_view last) {
  return std::none_of(last.begin(), last.end(),
                      [](char c) { return c != '*' && c != '?' && IsForbiddenInFileName(c); });
}

}  // namespace

FolderFiles::FolderFiles(std::string_view folder) : root_(Verbatim(folder)) {}

std::optional<std::string> FolderFiles::Resolve(std::string_view path) const {
  const std::optional<std::string> place = path.empty() ? std::nullopt : PlaceInMachineFolder(path);
  if (!place) {
    return std::nullopt;
  }
  std::string host = root_ + "\\" + *place;
  std::replace(host.begin() + static_cast<std::ptrdiff_t>(root_.size()), host.end(), '/', '\\');
  return host;
}

bool FolderFiles::IsFile(std::string_view path) {
  const std::optional<std::string> host = Resolve(path);
  return host && !EndsInSeparator(path) && files_.IsFile(*host);
}

bool FolderFiles::IsFolder(std::string_view path) {
  const std::optional<std::string> host = Resolve(path);
  return host && files_.IsFolder(*host);
}

std::vector<std::string> FolderFiles::ListFiles(std::string_view pattern) {
  if (pattern.empty()) {
    return {};
  }
  std::size_t split = pattern.find_last_of("\\/:");
  split = split == std::string_view::npos ? 0 : split + 1;
  const std::string_view last = pattern.substr(split);
  const std::optional<std::string> host = Resolve(split == 0 ? "." : pattern.substr(0, split));
  if (!host || !IsPattern(last)) {
    return {};
  }
  return files_.ListFiles(*host + "\\" + std::string(last));
}

std::vector<std::string> FolderFiles::ListFolders(std::string_view folder) {
  const std::optional<std::string> host = Resolve(folder);
  return host ? files_.ListFolders(*host) : std::vector<std::string>{};
}

std::string FolderFiles::ReadAll(std::string_view path) {
  const std::string host = Existing(path, "read");
  std::string bytes;
  Named(path, host, [&] { bytes = files_.ReadAll(host); });
  return bytes;
}

std::string FolderFiles::ReadPart(std::string_view path, std::uint64_t at, std::size_t most) {
  const std::string host = Existing(path, "read");
  std::string bytes;
  Named(path, host, [&] { bytes = files_.ReadPart(host, at, most); });
  return bytes;
}

void FolderFiles::Replace(std::string_view path, std::string_view bytes) {
  const std::string host = Target(path, "write");
  Named(path, host, [&] { files_.Replace(host, bytes); });
}

void FolderFiles::ReplaceOnDisk(std::string_view path, std::string_view bytes) {
  const std::string host = Target(path, "write");
  Named(path, host, [&] { files_.ReplaceOnDisk(host, bytes); });
}

void FolderFiles::CreateNew(std::string_view path, std::string_view bytes) {
  const std::string host = Target(path, "write");
  Named(path, host, [&] { files_.CreateNew(host, bytes); });
}

void FolderFiles::Remove(std::string_view path) {
  const std::string host = Existing(path, "remove");
  Named(path, host, [&] { files_.Remove(host); });
}

void FolderFiles::CreateFolder(std::string_view path) {
  const std::string host = Target(path, kMakeFolder);
  RefuseMissingDrive(host, path);
  Named(path, host, [&] { files_.CreateFolder(host); });
}

void FolderFiles::RemoveFolder(std::string_view path) {
  const std::string host = Target(path, kRemoveFolder);
  Named(path, host, [&] { files_.RemoveFolder(host); });
}

// Of what has to exist; a final separator stays, with which no file is found.
std::string FolderFiles::Existing(std::string_view path, std::string_view doing) const {
  const std::optional<std::string> host = Resolve(path);
  if (!host) {
    throw MakeFileError(RuntimeError::FileNotFound, doing, path);
  }
  return EndsInSeparator(path) ? *host + "\\" : *host;
}

std::string FolderFiles::Target(std::string_view path, std::string_view doing) const {
  const std::optional<std::string> host = Resolve(path);
  if (!host) {
    throw MakeFileError(RuntimeError::PathFileAccess, doing, path, kNoPossibleName);
  }
  return *host;
}

// A drive is not made by making a folder on it.
void FolderFiles::RefuseMissingDrive(const std::string& host, std::string_view path) {
  const std::size_t end = host.find('\\', root_.size() + 1);
  if (!files_.IsFolder(host.substr(0, end))) {
    throw MakeFileError(RuntimeError::PathNotFound, kMakeFolder, path, "there is no such drive");
  }
}

void FolderFiles::Named(std::string_view path, const std::string& host, const std::function<void()>& step) const {
  try {
    step();
  } catch (const AutomationError& error) {
    std::string text = ReplaceAll(error.Description(), host, path);
    // A folder above it was named.
    const std::string drive = host.substr(0, std::min(host.find('\\', root_.size() + 1), host.size()));
    if (drive.find("\\drive_", root_.size()) == root_.size()) {
      const auto letter = static_cast<char>(std::toupper(static_cast<unsigned char>(drive.back())));
      text = ReplaceAll(text, drive, std::string{letter, ':'});
    }
    throw AutomationError(error.Number(), error.Source(), text);
  }
}

}  // namespace parvex::windows
