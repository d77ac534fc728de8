#pragma once

#include <cstdint>
#include <string>
#include <string_view>

#include "seams/code_page.h"

namespace parvex::windows {

/// A code page by its number, whatever this system's own is.
class NumberedCodePage : public CodePage {
 public:
  /// One that the system does not know is an AutomationError (5).
  explicit NumberedCodePage(std::uint32_t number);
  std::string ToAnsi(std::string_view text) override;
  std::string FromAnsi(std::string_view bytes) override;
  bool IsSingleByte() override;

 private:
  std::uint32_t number_;
};

}  // namespace parvex::windows
