#include "adapters/windows/new_file.h"

#include <algorithm>
#include <cstdint>
#include <mutex>
#include <unordered_set>
#include <vector>

#include "adapters/windows/system_error.h"
#include "adapters/windows/wide_text.h"
#include "formats/text/new_file_names.h"

namespace parvex::windows {
namespace {

constexpr std::size_t kMostAtOnce = 1u << 20;
constexpr std::size_t kMostKnownFolders = 4096;
constexpr int kMostTries = 1000;
constexpr int kMostTurns = 40;
constexpr DWORD kPauseOfTurns = 25;  // milliseconds
constexpr DWORD kKeptAttributes = FILE_ATTRIBUTE_HIDDEN | FILE_ATTRIBUTE_SYSTEM | FILE_ATTRIBUTE_NOT_CONTENT_INDEXED;

// With what separates it from a name in it; empty for the current folder.
std::wstring FolderBefore(const std::wstring& path) {
  const std::size_t cut = path.find_last_of(L"\\/:");
  return cut == std::wstring::npos ? std::wstring() : path.substr(0, cut + 1);
}

bool IsFirstVisit(const std::wstring& folder) {
  static std::mutex mutex;
  static std::unordered_set<std::wstring> known;
  const std::lock_guard<std::mutex> alone(mutex);
  if (known.size() == kMostKnownFolders) {
    known.clear();
  }
  return known.insert(folder).second;
}

bool IsOlderThanADay(const FILETIME& written) {
  constexpr std::uint64_t kUnitsOfASecond = 10'000'000;
  const auto units = [](const FILETIME& time) { return std::uint64_t{time.dwHighDateTime} << 32 | time.dwLowDateTime; };
  FILETIME now;
  GetSystemTimeAsFileTime(&now);
  return units(written) + kSecondsOfNewFile * kUnitsOfASecond < units(now);
}

// What programs left that ended too early. One that is still written cannot be deleted.
void RemoveLeftovers(const std::wstring& folder) {
  if (!IsFirstVisit(folder)) {
    return;
  }
  WIN32_FIND_DATAW found;
  const HANDLE search = FindFirstFileW((folder + L"~parvex-*.tmp").c_str(), &found);
  if (search == INVALID_HANDLE_VALUE) {
    return;
  }
  do {
    const bool isPlain = (found.dwFileAttributes & (FILE_ATTRIBUTE_DIRECTORY | FILE_ATTRIBUTE_REPARSE_POINT)) == 0;
    if (isPlain && IsOlderThanADay(found.ftLastWriteTime) && IsNewFileName(Narrow(found.cFileName))) {
      DeleteFileW((folder + found.cFileName).c_str());
    }
  } while (FindNextFileW(search, &found));
  FindClose(search);
}

// The access list of a file; empty where the file system has none.
std::vector<std::byte> AccessListOf(const std::wstring& path) {
  DWORD size = 0;
  GetFileSecurityW(path.c_str(), DACL_SECURITY_INFORMATION, nullptr, 0, &size);
  std::vector<std::byte> descriptor(size);
  if (size == 0 || !GetFileSecurityW(path.c_str(), DACL_SECURITY_INFORMATION, descriptor.data(), size, &size)) {
    descriptor.clear();
  }
  return descriptor;
}

bool IsHeldByAnother(DWORD code) {
  return code == ERROR_ACCESS_DENIED || code == ERROR_SHARING_VIOLATION || code == ERROR_LOCK_VIOLATION ||
         code == ERROR_USER_MAPPED_FILE;
}

// 0 or the system's error number.
DWORD Moved(const std::wstring& from, const std::wstring& to, DWORD flags) {
  return MoveFileExW(from.c_str(), to.c_str(), flags) ? 0 : GetLastError();
}

// The old file gets a name of ours while it goes: without one Wine makes up names, and leaves files of them behind. It
// is not that of a new file, which somebody might remove as a leftover: when this program ends here, it is all there
// is.
bool IsReplaced(const std::wstring& from, const std::wstring& to, DWORD flags) {
  std::wstring aside = FolderBefore(to) + Widen(MakeNewFileName());
  aside.replace(aside.size() - 3, 3, L"old");
  bool isDone =
      ReplaceFileW(to.c_str(), from.c_str(), aside.c_str(), REPLACEFILE_IGNORE_MERGE_ERRORS, nullptr, nullptr);
  if (!isDone && GetLastError() == ERROR_UNABLE_TO_MOVE_REPLACEMENT_2) {
    isDone = Moved(from, to, flags) == 0;  // the old one stands aside
    if (!isDone) {
      Moved(aside, to, 0);
    }
  }
  if (isDone) {
    DeleteFileW(aside.c_str());
  }
  return isDone;
}

DWORD MovedOver(const std::wstring& from, const std::wstring& to, DWORD flags) {
  for (int turn = 1;; ++turn) {
    const DWORD failed = Moved(from, to, flags);
    if (!IsHeldByAnother(failed)) {
      return failed;
    }
    if (IsReplaced(from, to, flags)) {
      return 0;
    }
    if (turn == kMostTurns) {
      return failed;
    }
    Sleep(kPauseOfTurns);
  }
}

}  // namespace

NewFile::NewFile(std::string_view target) : target_(target), wideTarget_(Widen(target)) {
  const DWORD attributes = GetFileAttributesW(wideTarget_.c_str());
  if (attributes != INVALID_FILE_ATTRIBUTES &&
      (attributes & (FILE_ATTRIBUTE_DIRECTORY | FILE_ATTRIBUTE_READONLY)) != 0) {
    throw FileError(ERROR_ACCESS_DENIED, "write", target_);
  }
  const std::wstring folder = FolderBefore(wideTarget_);
  RemoveLeftovers(folder);
  Make(folder, attributes);
}

NewFile::~NewFile() {
  Close();
  if (hasOwnName_) {
    DeleteFileW(beside_.c_str());
  }
}

void NewFile::Make(const std::wstring& folder, DWORD attributes) {
  const bool isPresent = attributes != INVALID_FILE_ATTRIBUTES;
  std::vector<std::byte> accessList = isPresent ? AccessListOf(wideTarget_) : std::vector<std::byte>();
  SECURITY_ATTRIBUTES security = {sizeof security, accessList.data(), FALSE};
  const DWORD kept = isPresent ? attributes & kKeptAttributes : 0;
  DWORD failed = ERROR_FILE_EXISTS;
  for (int tries = 0; tries < kMostTries && (failed == ERROR_FILE_EXISTS || failed == ERROR_ALREADY_EXISTS); ++tries) {
    beside_ = folder + Widen(MakeNewFileName());
    handle_ = CreateFileW(beside_.c_str(), GENERIC_READ | GENERIC_WRITE, 0, accessList.empty() ? nullptr : &security,
                          CREATE_NEW, kept == 0 ? FILE_ATTRIBUTE_NORMAL : kept, nullptr);
    failed = handle_ == INVALID_HANDLE_VALUE ? GetLastError() : 0;
  }
  if (failed != 0) {
    throw FileError(failed, "write", target_);
  }
  hasOwnName_ = true;
}

void NewFile::Append(std::string_view bytes) {
  while (!bytes.empty()) {
    DWORD written = 0;
    const auto wanted = static_cast<DWORD>(std::min(bytes.size(), kMostAtOnce));
    if (!WriteFile(handle_, bytes.data(), wanted, &written, nullptr) || written == 0) {
      throw FileError(GetLastError(), "write", target_);
    }
    bytes.remove_prefix(written);
  }
}

void NewFile::TakeName(NameOf whose, Durability durability) {
  const bool onDisk = durability == Durability::OnDisk;
  if (onDisk && !FlushFileBuffers(handle_)) {
    throw FileError(GetLastError(), "write", target_);
  }
  Close();
  const DWORD flags = onDisk ? MOVEFILE_WRITE_THROUGH : 0;
  const DWORD failed = whose == NameOf::Anybody ? MovedOver(beside_, wideTarget_, flags | MOVEFILE_REPLACE_EXISTING)
                                                : Moved(beside_, wideTarget_, flags);
  if (failed != 0) {
    throw FileError(failed, "write", target_);
  }
  hasOwnName_ = false;
}

void NewFile::Close() {
  if (handle_ != INVALID_HANDLE_VALUE) {
    CloseHandle(handle_);
    handle_ = INVALID_HANDLE_VALUE;
  }
}

}  // namespace parvex::windows
