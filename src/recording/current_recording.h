#pragma once

#include <cstdint>
#include <memory>
#include <utility>

#include "journal/crossing_log.h"
#include "recording/recording.h"

namespace parvex::recording {

/// The recording of the call that an instance carries out at the moment; none between calls, and in calls that are not
/// recorded. What an instance keeps from call to call tells the one that runs.
struct CurrentRecording {
  std::shared_ptr<Recording> recording;
};

/// Tells the current recording of what lies outside of this system: that program may end here, and may change files.
class OutsideLog : public journal::CrossingLog {
 public:
  explicit OutsideLog(std::shared_ptr<CurrentRecording> current) : current_(std::move(current)) {}

  std::uint64_t Begin(const Json& line) override {
    if (current_->recording == nullptr) {
      return 0;
    }
    current_->recording->Files().BeforeOutside();
    return current_->recording->Writer().Begin(line);
  }
  void End(std::uint64_t number, const Json& line, const AutomationError* error) override {
    if (current_->recording != nullptr && number != 0) {
      current_->recording->Writer().End(number, line, error);
      current_->recording->Files().AfterOutside();
    }
  }
  void Note(const Json& line) override {
    if (current_->recording != nullptr) {
      current_->recording->Writer().Note(line);
    }
  }

 private:
  std::shared_ptr<CurrentRecording> current_;
};

}  // namespace parvex::recording
