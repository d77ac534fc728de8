#pragma once

#include "seams/message_pump.h"

namespace parvex::posix {

/// Stands in for a desktop's queue on a system without one: there are no window messages to run; Sleep sleeps.
class SleepingPump : public MessagePump {
 public:
  void RunPending() override {}
  void Sleep(std::chrono::milliseconds duration) override;
};

}  // namespace parvex::posix
