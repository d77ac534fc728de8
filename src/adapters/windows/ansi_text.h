#pragma once

#include <string>
#include <string_view>

#include "seams/code_page.h"

namespace parvex::windows {

/// Bytes in the system's ANSI code page, "?" for a character that it lacks.
std::string ToAnsi(std::string_view text);
std::string FromAnsi(std::string_view bytes);

class SystemCodePage : public CodePage {
 public:
  std::string ToAnsi(std::string_view text) override { return windows::ToAnsi(text); }
  std::string FromAnsi(std::string_view bytes) override { return windows::FromAnsi(bytes); }
};

}  // namespace parvex::windows
