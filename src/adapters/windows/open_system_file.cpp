#include "adapters/windows/open_system_file.h"

#include <algorithm>

#include "adapters/windows/system_error.h"

namespace parvex::windows {
namespace {

constexpr std::size_t kLargestPiece = 1u << 20;

}  // namespace

void OpenSystemFile::Append(std::string_view bytes) {
  Overwrite(end_, bytes);
  end_ += bytes.size();
}

void OpenSystemFile::Overwrite(std::uint64_t at, std::string_view bytes) {
  GoTo(at, "write");
  while (!bytes.empty()) {
    DWORD written = 0;
    const auto wanted = static_cast<DWORD>(std::min(bytes.size(), kLargestPiece));
    if (!WriteFile(handle_, bytes.data(), wanted, &written, nullptr) || written == 0) {
      throw FileError(GetLastError(), "write", path_);
    }
    bytes.remove_prefix(written);
  }
}

void OpenSystemFile::Truncate(std::uint64_t size) {
  GoTo(size, "write");
  if (!SetEndOfFile(handle_)) {
    throw FileError(GetLastError(), "write", path_);
  }
  end_ = size;
}

std::string OpenSystemFile::Read(std::uint64_t at, std::size_t most) {
  GoTo(at, "read");
  std::string bytes(most, '\0');
  std::size_t size = 0;
  DWORD got = 1;
  while (size < most && got > 0) {
    const auto wanted = static_cast<DWORD>(std::min(most - size, kLargestPiece));
    if (!ReadFile(handle_, bytes.data() + size, wanted, &got, nullptr)) {
      throw FileError(GetLastError(), "read", path_);
    }
    size += got;
  }
  bytes.resize(size);
  return bytes;
}

void OpenSystemFile::GoTo(std::uint64_t at, std::string_view doing) {
  LARGE_INTEGER place = {};
  place.QuadPart = static_cast<LONGLONG>(at);
  if (!SetFilePointerEx(handle_, place, nullptr, FILE_BEGIN)) {
    throw FileError(GetLastError(), doing, path_);
  }
}

}  // namespace parvex::windows
