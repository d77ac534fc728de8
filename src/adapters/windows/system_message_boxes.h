#pragma once

#include "seams/message_boxes.h"

namespace parvex::windows {

/// Boxes of the desktop, in front of everything and owned by the thread's active window; Show returns when the user has
/// closed the box. Texts are shown as they are, but NULs as U+FFFD and 10,000 units at most. Where nobody can close one
/// (IsHeadless) its text goes to the debugger's output, and Show returns as if OK had been pressed.
class SystemMessageBoxes : public MessageBoxes {
 public:
  void Show(std::string_view text, std::string_view caption, Icon icon) override;
};

/// Whether no box is to be shown: the process has no visible window station, as a service has, or the host asks for it.
/// It asks by the environment variable PARVEX_HEADLESS, or by the value Headless (a number or a text) under
/// SOFTWARE\Parvex of the current user or of the machine; the first of these three that is there counts, and asks when
/// it is 1.
bool IsHeadless();

}  // namespace parvex::windows
