#pragma once

#include <cstddef>
#include <cstdint>
#include <functional>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "seams/host_system.h"

namespace parvex::recording {

/// The lines of a journal. One that must be in the file before something happens takes those with it that came before;
/// a system takes few large pieces faster than many small ones.
class JournalFile {
 public:
  /// Told of a line that could not be written.
  using Lost = std::function<void(std::uint64_t step, const char* at, std::string_view why)>;

  JournalFile(HostSystem::File& file, Lost lost) : file_(file), lost_(std::move(lost)) {}

  /// Adds a line that waits for the next one that does not, or for Flush. `at` is a literal. An exception when there is
  /// no memory for it.
  void Add(std::uint64_t step, const char* at, std::string_view text);
  void Flush() noexcept;

  /// Of the lines that are in the file.
  std::uint64_t Size() const { return size_; }

 private:
  struct Line {
    std::uint64_t step;
    const char* at;
    std::size_t length;
  };
  void FlushOneByOne() noexcept;
  bool Append(std::string_view text) noexcept;

  HostSystem::File& file_;
  Lost lost_;
  std::string text_;
  std::vector<Line> lines_;
  std::uint64_t size_ = 0;
  std::string why_;  // the last Append failed
};

}  // namespace parvex::recording
