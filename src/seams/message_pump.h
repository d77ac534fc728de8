#pragma once

#include <chrono>

namespace parvex {

/// What a wait on the caller's thread is made of.
class MessagePump {
 public:
  virtual ~MessagePump() = default;
  /// Lets the window messages that are pending for this thread be processed.
  virtual void RunPending() = 0;
  virtual void Sleep(std::chrono::milliseconds duration) = 0;
};

}  // namespace parvex
