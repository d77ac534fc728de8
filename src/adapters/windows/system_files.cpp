#include "adapters/windows/system_files.h"

#include <windows.h>

#include <algorithm>
#include <cstdint>

#include "adapters/windows/new_file.h"
#include "adapters/windows/system_error.h"
#include "adapters/windows/wide_text.h"
#include "formats/text/file_names.h"
#include "formats/text/letter_case.h"

namespace parvex::windows {
namespace {

constexpr std::size_t kReadChunk = 1u << 20;
// Who reads a file lets others replace it meanwhile.
constexpr DWORD kSharedWithAll = FILE_SHARE_READ | FILE_SHARE_WRITE | FILE_SHARE_DELETE;

class FileHandle {
 public:
  explicit FileHandle(HANDLE handle) : handle_(handle) {}
  ~FileHandle() { Close(); }
  FileHandle(const FileHandle&) = delete;
  FileHandle& operator=(const FileHandle&) = delete;
  bool IsOpen() const { return handle_ != INVALID_HANDLE_VALUE; }
  HANDLE Get() const { return handle_; }
  void Close() {
    if (IsOpen()) {
      CloseHandle(handle_);
      handle_ = INVALID_HANDLE_VALUE;
    }
  }

 private:
  HANDLE handle_;
};

DWORD Attributes(std::string_view path) {
  return path.empty() ? INVALID_FILE_ATTRIBUTES : GetFileAttributesW(Widen(path).c_str());
}

bool IsFileNow(std::string_view path) {
  const DWORD attributes = Attributes(path);
  return attributes != INVALID_FILE_ATTRIBUTES && (attributes & FILE_ATTRIBUTE_DIRECTORY) == 0;
}

bool IsSeparator(char c) { return c == '\\' || c == '/'; }

// Names in a listing of `pattern` that are folders, or that are not, in the order of their upper-cased names.
std::vector<std::string> Listed(const std::wstring& pattern, bool folders) {
  std::vector<std::pair<std::string, std::string>> found;
  WIN32_FIND_DATAW entry;
  const HANDLE search = FindFirstFileW(pattern.c_str(), &entry);
  if (search == INVALID_HANDLE_VALUE) {
    return {};
  }
  do {
    const std::wstring_view name = entry.cFileName;
    const bool isFolder = (entry.dwFileAttributes & FILE_ATTRIBUTE_DIRECTORY) != 0;
    if (isFolder == folders && name != L"." && name != L"..") {
      const std::string narrow = Narrow(name);
      found.emplace_back(FoldName(narrow), narrow);
    }
  } while (FindNextFileW(search, &entry));
  FindClose(search);
  std::sort(found.begin(), found.end());
  std::vector<std::string> names;
  for (auto& [upper, name] : found) {
    names.push_back(std::move(name));
  }
  return names;
}

// Fills `bytes` as far as the file goes, and tells how far that is.
std::size_t ReadInto(HANDLE file, std::string& bytes, std::string_view path) {
  std::size_t done = 0;
  while (done < bytes.size()) {
    const auto wanted = static_cast<DWORD>(std::min(bytes.size() - done, kReadChunk));
    DWORD got = 0;
    if (!ReadFile(file, bytes.data() + done, wanted, &got, nullptr)) {
      throw FileError(GetLastError(), "read", path);
    }
    if (got == 0) {
      break;
    }
    done += got;
  }
  return done;
}

void WriteNewFile(std::string_view path, std::string_view bytes, NameOf whose, Durability durability) {
  NewFile file(path);
  file.Append(bytes);
  file.TakeName(whose, durability);
}

}  // namespace

bool SystemFiles::IsFile(std::string_view path) {
  if (holders_ == 0) {
    return IsFileNow(path);
  }
  const std::string asked(path);
  if (missing_.Knows(asked)) {
    return false;
  }
  const bool isFile = IsFileNow(path);
  if (!isFile) {
    missing_.Note(asked);
  }
  return isFile;
}

std::shared_ptr<void> SystemFiles::ExpectManyLooks() {
  ++holders_;
  return {nullptr, [this](void*) {
            if (--holders_ == 0) {
              missing_.Forget();
            }
          }};
}

bool SystemFiles::IsFolder(std::string_view path) {
  const DWORD attributes = Attributes(path);
  return attributes != INVALID_FILE_ATTRIBUTES && (attributes & FILE_ATTRIBUTE_DIRECTORY) != 0;
}

std::vector<std::string> SystemFiles::ListFiles(std::string_view pattern) {
  if (pattern.empty()) {
    return {};
  }
  std::wstring wide = Widen(pattern);
  if (wide.back() == L'\\' || wide.back() == L'/') {
    wide += L"*";
  }
  return Listed(wide, false);
}

std::vector<std::string> SystemFiles::ListFolders(std::string_view folder) {
  return Listed(Widen(folder) + L"\\*", true);
}

std::string SystemFiles::ReadAll(std::string_view path) {
  const FileHandle file(CreateFileW(Widen(path).c_str(), GENERIC_READ, kSharedWithAll, nullptr, OPEN_EXISTING,
                                    FILE_ATTRIBUTE_NORMAL, nullptr));
  if (!file.IsOpen()) {
    throw FileError(GetLastError(), "read", path);
  }
  LARGE_INTEGER size = {};
  if (!GetFileSizeEx(file.Get(), &size)) {
    throw FileError(GetLastError(), "read", path);
  }
  std::string bytes(static_cast<std::size_t>(size.QuadPart), '\0');
  bytes.resize(ReadInto(file.Get(), bytes, path));
  return bytes;
}

std::string SystemFiles::ReadPart(std::string_view path, std::uint64_t at, std::size_t most) {
  const FileHandle file(CreateFileW(Widen(path).c_str(), GENERIC_READ, kSharedWithAll, nullptr, OPEN_EXISTING,
                                    FILE_ATTRIBUTE_NORMAL, nullptr));
  LARGE_INTEGER size = {};
  LARGE_INTEGER place = {};
  place.QuadPart = static_cast<LONGLONG>(at);
  if (!file.IsOpen() || !GetFileSizeEx(file.Get(), &size) ||
      !SetFilePointerEx(file.Get(), place, nullptr, FILE_BEGIN)) {
    throw FileError(GetLastError(), "read", path);
  }
  const std::uint64_t left = size.QuadPart > place.QuadPart ? size.QuadPart - place.QuadPart : 0;
  std::string bytes(static_cast<std::size_t>(std::min<std::uint64_t>(left, most)), '\0');
  bytes.resize(ReadInto(file.Get(), bytes, path));
  return bytes;
}

void SystemFiles::Replace(std::string_view path, std::string_view bytes) {
  missing_.Forget();
  WriteNewFile(path, bytes, NameOf::Anybody, Durability::OfSystem);
}

void SystemFiles::ReplaceOnDisk(std::string_view path, std::string_view bytes) {
  missing_.Forget();
  WriteNewFile(path, bytes, NameOf::Anybody, Durability::OnDisk);
}

void SystemFiles::CreateNew(std::string_view path, std::string_view bytes) {
  missing_.Forget();
  if (const DWORD attributes = Attributes(path); attributes != INVALID_FILE_ATTRIBUTES) {
    const bool isFolder = (attributes & FILE_ATTRIBUTE_DIRECTORY) != 0;
    throw FileError(isFolder ? ERROR_ACCESS_DENIED : ERROR_FILE_EXISTS, "write", path);
  }
  WriteNewFile(path, bytes, NameOf::Nobody, Durability::OfSystem);
}

void SystemFiles::Remove(std::string_view path) {
  if (!DeleteFileW(Widen(path).c_str())) {
    throw FileError(GetLastError(), "remove", path);
  }
}

void SystemFiles::CreateFolder(std::string_view path) {
  missing_.Forget();
  if (static_cast<std::size_t>(std::count_if(path.begin(), path.end(), IsSeparator)) > kMostNamesOfPath) {
    throw MakeFileError(RuntimeError::PathFileAccess, "make the folder", path, kNoPossibleName);
  }
  if (IsFolder(path)) {
    return;
  }
  while (!path.empty() && (path.back() == '\\' || path.back() == '/')) {
    path.remove_suffix(1);
  }
  const std::size_t cut = path.find_last_of("\\/");
  if (cut != std::string_view::npos && cut > 2) {
    CreateFolder(path.substr(0, cut));
  }
  if (!CreateDirectoryW(Widen(path).c_str(), nullptr) && !IsFolder(path)) {
    const DWORD code = GetLastError();
    throw IsFile(path) ? MakeFileError(RuntimeError::PathFileAccess, "make the folder", path, kNameOfFile)
                       : FileError(code, "make the folder", path);
  }
}

void SystemFiles::RemoveFolder(std::string_view path) {
  missing_.Forget();
  const std::string inside = std::string(path) + "\\";
  const DWORD attributes = Attributes(path);
  if (attributes == INVALID_FILE_ATTRIBUTES) {
    throw MakeFileError(RuntimeError::PathNotFound, "remove the folder", path, "it does not exist");
  }
  // A link to a folder is removed as a link; what it leads to is not this folder's.
  if ((attributes & FILE_ATTRIBUTE_REPARSE_POINT) == 0) {
    for (const std::string& name : ListFiles(inside)) {
      Remove(inside + name);
    }
    for (const std::string& name : ListFolders(path)) {
      RemoveFolder(inside + name);
    }
  }
  if (!RemoveDirectoryW(Widen(path).c_str())) {
    throw FileError(GetLastError(), "remove the folder", path);
  }
}

}  // namespace parvex::windows
