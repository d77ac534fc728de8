#pragma once

#include <windows.h>

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>

namespace parvex::windows {

/// An open file that is written in pieces, by its handle, which is somebody else's. Errors are those of FileError.
class OpenSystemFile {
 public:
  OpenSystemFile(std::string_view path, HANDLE handle) : path_(path), handle_(handle) {}

  void Append(std::string_view bytes);
  /// Writes over bytes that are there.
  void Overwrite(std::uint64_t at, std::string_view bytes);
  /// Cuts the file; Append goes on there.
  void Truncate(std::uint64_t size);
  std::string Read(std::uint64_t at, std::size_t most);

 private:
  void GoTo(std::uint64_t at, std::string_view doing);

  std::string path_;
  HANDLE handle_;
  std::uint64_t end_ = 0;
};

}  // namespace parvex::windows
