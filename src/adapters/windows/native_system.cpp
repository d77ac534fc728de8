#include "adapters/windows/native_system.h"

#include <windows.h>

#include <algorithm>
#include <cstdio>

#include "adapters/windows/open_system_file.h"
#include "adapters/windows/system_error.h"
#include "adapters/windows/system_files.h"
#include "adapters/windows/system_replacement.h"
#include "adapters/windows/this_program.h"
#include "adapters/windows/wide_text.h"

namespace parvex::windows {
namespace {

class OwnFile : public HostSystem::File {
 public:
  explicit OwnFile(std::string_view path)
      : handle_(CreateFileW(Widen(path).c_str(), GENERIC_READ | GENERIC_WRITE, FILE_SHARE_READ, nullptr, CREATE_NEW,
                            FILE_ATTRIBUTE_NORMAL, nullptr)),
        bytes_(path, handle_) {
    if (handle_ == INVALID_HANDLE_VALUE) {
      throw FileError(GetLastError(), "write", path);
    }
  }
  ~OwnFile() override { CloseHandle(handle_); }
  OwnFile(const OwnFile&) = delete;
  OwnFile& operator=(const OwnFile&) = delete;

  void Append(std::string_view bytes) override { bytes_.Append(bytes); }
  void Overwrite(std::uint64_t at, std::string_view bytes) override { bytes_.Overwrite(at, bytes); }
  void Truncate(std::uint64_t size) override { bytes_.Truncate(size); }
  std::string Read(std::uint64_t at, std::size_t most) override { return bytes_.Read(at, most); }

 private:
  HANDLE handle_;
  OpenSystemFile bytes_;
};

std::optional<std::wstring> WideVariable(const wchar_t* name) {
  std::wstring value(32767, L'\0');  // the longest that the system has
  const DWORD size = GetEnvironmentVariableW(name, value.data(), static_cast<DWORD>(value.size()));
  value.resize(std::min<std::size_t>(size, value.size()));
  return value.empty() ? std::nullopt : std::optional(value);
}

std::string Formatted(const char* format, const SYSTEMTIME& time) {
  char text[32];
  std::snprintf(text, sizeof text, format, time.wYear % 10000u, time.wMonth % 100u, time.wDay % 100u, time.wHour % 100u,
                time.wMinute % 100u, time.wSecond % 100u);
  return text;
}

bool IsDots(const wchar_t* name) { return std::wstring_view(name) == L"." || std::wstring_view(name) == L".."; }

}  // namespace

HostSystem::Facts NativeSystem::ThisProgram() {
  return {.platform = "Windows",
          .bitness = 8 * sizeof(void*),
          .codePage = GetACP(),
          .program = Narrow(ProgramPath()),
          .processId = GetCurrentProcessId(),
          .xmlEngine = "MSXML 3",
          .databaseEngine = "DAO"};
}

std::uint32_t NativeSystem::ThreadId() { return GetCurrentThreadId(); }

std::optional<std::string> NativeSystem::Variable(std::string_view name) {
  const std::optional<std::wstring> value = WideVariable(Widen(name).c_str());
  return value ? std::optional(Narrow(*value)) : std::nullopt;
}

std::string NativeSystem::DefaultFolder() {
  std::optional<std::wstring> above = WideVariable(L"LOCALAPPDATA");
  if (!above) {
    above = WideVariable(L"TEMP");
  }
  return Narrow(above.value_or(L"C:\\Temp")) + "\\Parvex\\Recordings";
}

std::string NativeSystem::LocalTime() {
  SYSTEMTIME now;
  GetLocalTime(&now);
  return Formatted("%04u%02u%02u-%02u%02u%02u", now);
}

std::string NativeSystem::UniversalTime() {
  SYSTEMTIME now;
  GetSystemTime(&now);
  return Formatted("%04u-%02u-%02uT%02u:%02u:%02uZ", now);
}

std::uint64_t NativeSystem::Microseconds() {
  LARGE_INTEGER now = {};
  if (clockStepsPerSecond_ == 0) {
    QueryPerformanceFrequency(&now);
    clockStepsPerSecond_ = static_cast<std::uint64_t>(now.QuadPart);
  }
  QueryPerformanceCounter(&now);
  const auto steps = static_cast<std::uint64_t>(now.QuadPart);
  return steps / clockStepsPerSecond_ * 1'000'000 + steps % clockStepsPerSecond_ * 1'000'000 / clockStepsPerSecond_;
}

void NativeSystem::CreateFolders(std::string_view path) { SystemFiles().CreateFolder(path); }

bool NativeSystem::CreateNewFolder(std::string_view path) {
  if (CreateDirectoryW(Widen(path).c_str(), nullptr)) {
    return true;
  }
  const DWORD code = GetLastError();
  if (code != ERROR_ALREADY_EXISTS) {
    throw FileError(code, "make the folder", path);
  }
  return false;
}

std::unique_ptr<HostSystem::File> NativeSystem::MakeFile(std::string_view path) {
  return std::make_unique<OwnFile>(path);
}

// Who reads a new file, its folder says: those of users are closed to others.
std::unique_ptr<HostSystem::Replacement> NativeSystem::MakeReplacement(std::string_view path, Readers) {
  return MakeSystemReplacement(path);
}

// Whose file it is may remove it while it is looked at.
bool NativeSystem::IsInUse(std::string_view path) {
  const HANDLE file =
      CreateFileW(Widen(path).c_str(), GENERIC_READ | GENERIC_WRITE, FILE_SHARE_READ | FILE_SHARE_DELETE, nullptr,
                  OPEN_EXISTING, FILE_ATTRIBUTE_NORMAL, nullptr);
  if (file == INVALID_HANDLE_VALUE) {
    return GetLastError() == ERROR_SHARING_VIOLATION;
  }
  CloseHandle(file);
  return false;
}

bool NativeSystem::IsFolder(std::string_view path) {
  const DWORD attributes = GetFileAttributesW(Widen(path).c_str());
  return attributes != INVALID_FILE_ATTRIBUTES && (attributes & FILE_ATTRIBUTE_DIRECTORY) != 0;
}

std::uint64_t NativeSystem::SizeOf(std::string_view path) {
  WIN32_FILE_ATTRIBUTE_DATA data = {};
  if (!GetFileAttributesExW(Widen(path).c_str(), GetFileExInfoStandard, &data) ||
      (data.dwFileAttributes & FILE_ATTRIBUTE_DIRECTORY) != 0) {
    return 0;
  }
  return std::uint64_t{data.nFileSizeHigh} << 32 | data.nFileSizeLow;
}

std::string NativeSystem::ReadAll(std::string_view path) { return SystemFiles().ReadAll(path); }

void NativeSystem::WriteAll(std::string_view path, std::string_view bytes) { SystemFiles().Replace(path, bytes); }

void NativeSystem::Rename(std::string_view from, std::string_view to) {
  if (!MoveFileExW(Widen(from).c_str(), Widen(to).c_str(), MOVEFILE_REPLACE_EXISTING)) {
    throw FileError(GetLastError(), "rename", from);
  }
}

void NativeSystem::Remove(std::string_view path) { SystemFiles().Remove(path); }

// A file that was removed while another host looks whether it is in use goes when that look is over, and its folder
// cannot go before.
void NativeSystem::RemoveFolder(std::string_view path) {
  constexpr int kMostTries = 20;
  constexpr DWORD kPause = 5;
  for (int tries = 1;; ++tries) {
    try {
      return SystemFiles().RemoveFolder(path);
    } catch (const AutomationError&) {
      if (!IsFolder(path)) {
        return;  // another host was quicker
      }
      if (tries == kMostTries) {
        throw;
      }
    }
    Sleep(kPause);
  }
}

std::vector<HostSystem::Entry> NativeSystem::List(std::string_view folder) {
  std::vector<Entry> entries;
  WIN32_FIND_DATAW found;
  const HANDLE search = FindFirstFileW(Widen(std::string(folder) + "\\*").c_str(), &found);
  if (search == INVALID_HANDLE_VALUE) {
    return entries;
  }
  do {
    if (!IsDots(found.cFileName)) {
      const bool isFolder = (found.dwFileAttributes & FILE_ATTRIBUTE_DIRECTORY) != 0;
      const std::uint64_t bytes = std::uint64_t{found.nFileSizeHigh} << 32 | found.nFileSizeLow;
      const bool isPlain = (found.dwFileAttributes & FILE_ATTRIBUTE_REPARSE_POINT) == 0;
      entries.push_back({Narrow(found.cFileName), isFolder ? 0 : bytes, isFolder, isPlain});
    }
  } while (FindNextFileW(search, &found));
  FindClose(search);
  return entries;
}

}  // namespace parvex::windows
