#pragma once

#include "platform/message_box.h"
#include "platform/message_pump.h"

namespace parvex::posix {

// What stands in for a desktop on a system without one.

/// There are no window messages to run; Sleep sleeps.
class SleepingPump : public MessagePump {
 public:
  void RunPending() override {}
  void Sleep(std::chrono::milliseconds duration) override;
};

/// Boxes are written to standard error, each in one piece, and close at once.
class WrittenBoxes : public MessageBoxes {
 public:
  void Show(std::string_view text, std::string_view caption, Icon icon) override;
};

}  // namespace parvex::posix
