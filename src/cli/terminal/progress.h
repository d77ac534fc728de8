#pragma once

#include <memory>
#include <string>

#include "seams/platform.h"

namespace parvex::cli {

/// One line on standard error that tells a waiting user what goes on; nothing at all where standard error is no
/// terminal. It is gone when the object is.
class ProgressLine {
 public:
  ProgressLine();
  ~ProgressLine();
  ProgressLine(const ProgressLine&) = delete;
  ProgressLine& operator=(const ProgressLine&) = delete;

  bool IsShown() const { return isShown_; }
  void Show(const std::string& text);
  void Clear() { Show({}); }

 private:
  const bool isShown_;
  std::string text_;
};

/// A machine on which an export is watched: the program that is waited for with the seconds that it takes, then the
/// tags that are read, appear on the line. Nothing else about the machine changes. `outside` and the line outlive this.
class WatchedExport {
 public:
  WatchedExport(const parvex::Platform& outside, ProgressLine& line);
  ~WatchedExport();
  WatchedExport(const WatchedExport&) = delete;
  WatchedExport& operator=(const WatchedExport&) = delete;

  parvex::Platform Platform();

 private:
  struct Parts;
  std::unique_ptr<Parts> parts_;
};

}  // namespace parvex::cli
