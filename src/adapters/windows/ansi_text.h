#pragma once

#include <string>
#include <string_view>

#include "seams/code_page.h"

namespace parvex::windows {

/// Between text and the system's ANSI code page, which may be UTF-8, as ToCodePage and FromCodePage do it.
std::string ToAnsi(std::string_view text);
std::string FromAnsi(std::string_view bytes);

class SystemCodePage : public CodePage {
 public:
  std::string ToAnsi(std::string_view text) override { return windows::ToAnsi(text); }
  std::string FromAnsi(std::string_view bytes) override { return windows::FromAnsi(bytes); }
  bool IsSingleByte() override;
};

}  // namespace parvex::windows
