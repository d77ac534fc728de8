#pragma once

#include "seams/message_boxes.h"

namespace parvex {

/// Boxes for a program without windows: written to standard error, each in one piece, and closed at once.
class WrittenBoxes : public MessageBoxes {
 public:
  void Show(std::string_view text, std::string_view caption, Icon icon) override;
};

}  // namespace parvex
