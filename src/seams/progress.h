#pragma once

#include <cstddef>
#include <string_view>

namespace parvex {

/// Told what a command does while somebody waits for it, on the command's own thread. It does not change what the
/// command does: it throws nothing and calls nothing back.
class Progress {
 public:
  virtual ~Progress() = default;
  /// The command waits for `what` ("the quote builder is running"); told ten times a second until HasWaited.
  virtual void Waits(std::string_view what) = 0;
  /// The wait is over, however it ended.
  virtual void HasWaited() = 0;
  /// A tag of the export is read, `number` (from 1) of `count`. Each is told once, in their order, until HasReadTags.
  virtual void ReadsTag(std::size_t number, std::size_t count, std::string_view name) = 0;
  /// No tag is read any more, whether all were or one failed.
  virtual void HasReadTags() = 0;
};

}  // namespace parvex
