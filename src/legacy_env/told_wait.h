#pragma once

#include <string_view>

#include "seams/progress.h"

namespace parvex {

/// A wait of which the machine's progress is told: whatever ends it, its end is told too. Tells nobody for null.
class ToldWait {
 public:
  explicit ToldWait(Progress* progress) : progress_(progress) {}
  ~ToldWait() {
    if (wasTold_) {
      progress_->HasWaited();
    }
  }
  ToldWait(const ToldWait&) = delete;
  ToldWait& operator=(const ToldWait&) = delete;

  /// Before each poll.
  void GoesOn(std::string_view what) {
    if (progress_ != nullptr) {
      progress_->Waits(what);
      wasTold_ = true;
    }
  }

 private:
  Progress* progress_;
  bool wasTold_ = false;
};

}  // namespace parvex
