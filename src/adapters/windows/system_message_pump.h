#pragma once

#include "seams/message_pump.h"

namespace parvex::windows {

/// Serves the thread's messages as the host's own loop would: the host's message hooks see them first, where it may
/// translate its accelerators, then its dialogs, for their keys.
class SystemMessagePump : public MessagePump {
 public:
  void RunPending() override;
  void Sleep(std::chrono::milliseconds duration) override;
};

}  // namespace parvex::windows
