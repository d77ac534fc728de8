#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>

namespace parvex::posix {

/// An open file of this system that is written in pieces, by its descriptor, which is somebody else's. Errors are those
/// of host_file.h.
class OpenHostFile {
 public:
  OpenHostFile(std::string_view shownPath, int descriptor) : shownPath_(shownPath), descriptor_(descriptor) {}

  void Append(std::string_view bytes);
  /// Writes over bytes that are there.
  void Overwrite(std::uint64_t at, std::string_view bytes);
  /// Cuts the file; Append goes on there.
  void Truncate(std::uint64_t size);
  std::string Read(std::uint64_t at, std::size_t most);
  /// Gives back what was reserved and not written. To be called before the descriptor is closed.
  void Finish();

 private:
  void Reserve(std::size_t more);

  std::string shownPath_;
  int descriptor_;
  std::uint64_t end_ = 0;
  std::uint64_t reserved_ = 0;
};

}  // namespace parvex::posix
