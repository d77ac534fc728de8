#pragma once

#include "seams/message_boxes.h"
#include "seams/message_pump.h"

namespace parvex::windows {

class SystemMessagePump : public MessagePump {
 public:
  void RunPending() override;
  void Sleep(std::chrono::milliseconds duration) override;
};

/// Boxes of the desktop; Show returns when the user has closed the box.
class SystemMessageBoxes : public MessageBoxes {
 public:
  void Show(std::string_view text, std::string_view caption, Icon icon) override;
};

}  // namespace parvex::windows
