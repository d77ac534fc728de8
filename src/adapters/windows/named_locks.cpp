#include "adapters/windows/named_locks.h"

#include <windows.h>

#include <algorithm>
#include <cstdint>
#include <map>
#include <string>
#include <utility>

#include "adapters/windows/system_error.h"
#include "adapters/windows/this_program.h"
#include "adapters/windows/wide_text.h"
#include "seams/automation_error.h"
#include "seams/lock_holder.h"

namespace parvex::windows {
namespace {

class Handle {
 public:
  explicit Handle(HANDLE handle = nullptr) : handle_(handle == INVALID_HANDLE_VALUE ? nullptr : handle) {}
  ~Handle() {
    if (handle_ != nullptr) {
      CloseHandle(handle_);
    }
  }
  Handle(Handle&& other) noexcept : handle_(std::exchange(other.handle_, nullptr)) {}
  Handle& operator=(Handle&&) = delete;

  HANDLE Get() const { return handle_; }
  explicit operator bool() const { return handle_ != nullptr; }

 private:
  HANDLE handle_;
};

std::wstring FullPath(std::string_view path) {
  const std::wstring wide = Widen(path);
  std::wstring full(MAX_PATH, L'\0');
  DWORD size = GetFullPathNameW(wide.c_str(), MAX_PATH, full.data(), nullptr);
  if (size > full.size()) {
    full.resize(size);
    size = GetFullPathNameW(wide.c_str(), size, full.data(), nullptr);
  }
  full.resize(size);
  while (!full.empty() && full.back() == L'\\') {
    full.pop_back();
  }
  return full;
}

// A name may hold no backslash and no more than 260 characters, so that it is a number made of the path.
std::wstring NameOf(const wchar_t* kind, std::string_view path) {
  std::wstring full = FullPath(path);
  CharUpperBuffW(full.data(), static_cast<DWORD>(full.size()));
  std::uint64_t number = 14695981039346656037u;  // FNV-1a
  for (const wchar_t unit : full) {
    for (const unsigned byte : {unit & 0xFFu, static_cast<unsigned>(unit) >> 8}) {
      number = (number ^ byte) * 1099511628211u;
    }
  }
  constexpr wchar_t kDigits[] = L"0123456789abcdef";
  std::wstring name = std::wstring(L"Global\\Parvex-") + kind + L"-";
  for (int shift = 60; shift >= 0; shift -= 4) {
    name += kDigits[(number >> shift) & 0xF];
  }
  return name;
}

// The mutex, if it was not there before.
Handle MakeMutex(const std::wstring& name) {
  SECURITY_DESCRIPTOR everyone;
  InitializeSecurityDescriptor(&everyone, SECURITY_DESCRIPTOR_REVISION);
  SetSecurityDescriptorDacl(&everyone, TRUE, nullptr, FALSE);
  SECURITY_ATTRIBUTES attributes = {sizeof attributes, &everyone, FALSE};
  SetLastError(ERROR_SUCCESS);
  Handle made(CreateMutexW(&attributes, FALSE, name.c_str()));
  return GetLastError() == ERROR_SUCCESS ? std::move(made) : Handle();
}

Handle WriteHolder(const std::wstring& path, bool waitsForUser) {
  Handle file(CreateFileW(path.c_str(), GENERIC_WRITE | DELETE, FILE_SHARE_READ | FILE_SHARE_DELETE, nullptr,
                          CREATE_ALWAYS, FILE_ATTRIBUTE_TEMPORARY | FILE_FLAG_DELETE_ON_CLOSE, nullptr));
  if (file) {
    const std::string text =
        TextOfHolder({static_cast<std::uint32_t>(GetCurrentProcessId()), Narrow(ProgramPath()), waitsForUser});
    DWORD written = 0;
    WriteFile(file.Get(), text.data(), static_cast<DWORD>(text.size()), &written, nullptr);
  }
  return file;
}

MachineLocks::Holder ReadHolder(const std::wstring& path) {
  const Handle file(CreateFileW(path.c_str(), GENERIC_READ, FILE_SHARE_READ | FILE_SHARE_WRITE | FILE_SHARE_DELETE,
                                nullptr, OPEN_EXISTING, 0, nullptr));
  std::string text(kMostOfHolder, '\0');
  DWORD got = 0;
  if (!file || !ReadFile(file.Get(), text.data(), static_cast<DWORD>(text.size()), &got, nullptr)) {
    got = 0;
  }
  text.resize(got);
  return HolderIn(text);
}

// The file goes before the mutex, so that nobody is told of a holder who has let go.
class NamedLock : public MachineLocks::Lock {
 public:
  NamedLock(Handle mutex, Handle file) : mutex_(std::move(mutex)), file_(std::move(file)) {}

 private:
  Handle mutex_;
  Handle file_;
};

}  // namespace

std::unique_ptr<MachineLocks::Lock> NamedLocks::TryTake(std::string_view folder, bool waitsForUser, Holder& holder) {
  const std::wstring path = FullPath(folder);
  const DWORD attributes = GetFileAttributesW(path.c_str());
  if (attributes == INVALID_FILE_ATTRIBUTES || (attributes & FILE_ATTRIBUTE_DIRECTORY) == 0) {
    return std::make_unique<Lock>();
  }
  const std::wstring file = path + L"\\" + Widen(kLockFile);
  Handle mutex = MakeMutex(NameOf(L"hand-over", folder));
  if (!mutex) {
    holder = ReadHolder(file);
    return nullptr;
  }
  return std::make_unique<NamedLock>(std::move(mutex), WriteHolder(file, waitsForUser));
}

std::shared_ptr<void> HoldNamed(std::string_view path) {
  constexpr DWORD kLongest = 30000;
  const std::wstring name = NameOf(L"file", path);
  thread_local std::map<std::wstring, std::weak_ptr<void>> held;
  if (const auto already = held.find(name); already != held.end()) {
    if (std::shared_ptr<void> lock = already->second.lock()) {
      return lock;
    }
    held.erase(already);
  }
  DWORD waited = 0;
  for (DWORD pause = 1;; pause = std::min<DWORD>(2 * pause, 50)) {
    if (Handle mutex = MakeMutex(name)) {
      const auto taken = std::make_shared<Handle>(std::move(mutex));
      held[name] = taken;
      return taken;
    }
    if (waited >= kLongest) {
      throw MakeFileError(RuntimeError::PermissionDenied, "change", path, kIsBeingChanged);
    }
    Sleep(pause);
    waited += pause;
  }
}

}  // namespace parvex::windows
