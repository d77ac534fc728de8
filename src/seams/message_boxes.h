#pragma once

#include <string_view>

namespace parvex {

/// Modal boxes with an OK button. (The plural keeps clear of a macro of the Windows headers.)
class MessageBoxes {
 public:
  enum class Icon { None, Stop };

  virtual ~MessageBoxes() = default;
  /// Returns when the user has closed the box. On a machine without desktop it returns at once.
  virtual void Show(std::string_view text, std::string_view caption, Icon icon) = 0;
};

/// Caption of a box for which none is given.
inline constexpr std::string_view kDefaultCaption = "Parvex";

}  // namespace parvex
