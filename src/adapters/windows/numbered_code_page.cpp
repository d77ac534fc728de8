#include "adapters/windows/numbered_code_page.h"

#include <windows.h>

#include "adapters/windows/code_page_text.h"
#include "seams/automation_error.h"

namespace parvex::windows {

NumberedCodePage::NumberedCodePage(std::uint32_t number) : number_(number) {
  if (!IsKnownCodePage(number)) {
    throw MakeRuntimeError(RuntimeError::InvalidCall, "the code page " + std::to_string(number) + " is not known here");
  }
}

std::string NumberedCodePage::ToAnsi(std::string_view text) { return ToCodePage(text, number_); }

std::string NumberedCodePage::FromAnsi(std::string_view bytes) { return FromCodePage(bytes, number_); }

bool NumberedCodePage::IsSingleByte() {
  CPINFO info;
  return GetCPInfo(number_, &info) != 0 && info.MaxCharSize == 1;
}

}  // namespace parvex::windows
