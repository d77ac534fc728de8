#pragma once

#include <chrono>
#include <cstddef>
#include <optional>
#include <string>
#include <string_view>

#include "seams/progress.h"

namespace parvex::cli {

/// Progress as one line on standard error, which is gone when there is nothing more to tell: what is waited for, with
/// the seconds since the wait began, and which tag of how many is read. Nothing at all where standard error is no
/// terminal.
class ShownProgress : public Progress {
 public:
  ShownProgress();
  ~ShownProgress() override;
  ShownProgress(const ShownProgress&) = delete;
  ShownProgress& operator=(const ShownProgress&) = delete;

  bool IsShown() const { return isShown_; }

  void Waits(std::string_view what) override;
  void HasWaited() override;
  void ReadsTag(std::size_t number, std::size_t count, std::string_view name) override;
  void HasReadTags() override;

 private:
  using Clock = std::chrono::steady_clock;
  void Show(const std::string& text);

  const bool isShown_;
  std::string text_;
  std::optional<Clock::time_point> waitBegan_;
};

}  // namespace parvex::cli
