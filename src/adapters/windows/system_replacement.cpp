#include "adapters/windows/system_replacement.h"

#include <windows.h>

#include "adapters/windows/new_file.h"
#include "adapters/windows/open_system_file.h"
#include "adapters/windows/system_error.h"
#include "adapters/windows/wide_text.h"
#include "formats/text/file_names.h"
#include "seams/automation_error.h"
#include "seams/streamed_replacement.h"

namespace parvex::windows {
namespace {

class ReplacingFile : public HostSystem::Replacement {
 public:
  explicit ReplacingFile(std::string_view path) : file_(path), bytes_(path, file_.Handle()) {}

  void Append(std::string_view bytes) override { bytes_.Append(bytes); }
  void Overwrite(std::uint64_t at, std::string_view bytes) override { bytes_.Overwrite(at, bytes); }
  void Truncate(std::uint64_t size) override { bytes_.Truncate(size); }
  std::string Read(std::uint64_t at, std::size_t most) override { return bytes_.Read(at, most); }
  void TakeName() override { file_.TakeName(NameOf::Anybody, Durability::OnDisk); }

 private:
  NewFile file_;
  OpenSystemFile bytes_;
};

class StreamedDevice : public StreamedReplacement {
 public:
  explicit StreamedDevice(std::string_view path)
      : path_(path),
        handle_(CreateFileW(Widen(path).c_str(), GENERIC_WRITE, FILE_SHARE_READ | FILE_SHARE_WRITE, nullptr,
                            OPEN_EXISTING, FILE_ATTRIBUTE_NORMAL, nullptr)) {
    if (handle_ == INVALID_HANDLE_VALUE) {
      throw FileError(GetLastError(), "write", path);
    }
  }
  ~StreamedDevice() override { CloseHandle(handle_); }
  StreamedDevice(const StreamedDevice&) = delete;
  StreamedDevice& operator=(const StreamedDevice&) = delete;

  void TakeName() override {
    for (std::string_view left = Bytes(); !left.empty();) {
      DWORD written = 0;
      const auto wanted = static_cast<DWORD>(left.substr(0, 1u << 20).size());
      if (!WriteFile(handle_, left.data(), wanted, &written, nullptr) || written == 0) {
        throw FileError(GetLastError(), "write", path_);
      }
      left.remove_prefix(written);
    }
  }

 private:
  std::string path_;
  HANDLE handle_;
};

bool IsDevice(std::string_view path) {
  const std::size_t cut = path.find_last_of("\\/");
  return path.starts_with("\\\\.\\") || IsDeviceName(cut == std::string_view::npos ? path : path.substr(cut + 1));
}

// Other reparse points are files: those that a cloud has the bytes of, for one.
bool IsSymbolicLink(std::string_view path) {
  WIN32_FIND_DATAW found;
  const HANDLE search = FindFirstFileW(Widen(path).c_str(), &found);
  if (search == INVALID_HANDLE_VALUE) {
    return false;
  }
  FindClose(search);
  return (found.dwFileAttributes & FILE_ATTRIBUTE_REPARSE_POINT) != 0 && found.dwReserved0 == IO_REPARSE_TAG_SYMLINK;
}

}  // namespace

std::unique_ptr<HostSystem::Replacement> MakeSystemReplacement(std::string_view path) {
  if (IsDevice(path)) {
    return std::make_unique<StreamedDevice>(path);
  }
  if (IsSymbolicLink(path)) {
    throw MakeFileError(RuntimeError::PathFileAccess, "write", path, kIsLink);
  }
  return std::make_unique<ReplacingFile>(path);
}

}  // namespace parvex::windows
