#pragma once

#include <functional>
#include <memory>
#include <string>
#include <utility>

#include "recording/recording.h"
#include "seams/host_system.h"
#include "seams/own_settings.h"
#include "seams/platform.h"

namespace parvex::recording {

/// What a face gives an instance so that its calls are recorded where that is switched on.
class Recorder {
 public:
  /// `settings` may be null: then only the environment and `folder` (empty for none) switch on. Both outlive this.
  Recorder(HostSystem& system, OwnSettings* settings, std::string folder = {})
      : system_(system), settings_(settings), folder_(std::move(folder)) {}

  /// Begins the recording of a call; null when recording is off or cannot begin. Looks at the switch, and where it is
  /// off does nothing else. `describe` is asked only where it is on.
  std::shared_ptr<Recording> Begin(const Platform& machine, const std::function<CallStart()>& describe) noexcept;

 private:
  Json MachineFacts();

  HostSystem& system_;
  OwnSettings* settings_;
  std::string folder_;
};

}  // namespace parvex::recording
