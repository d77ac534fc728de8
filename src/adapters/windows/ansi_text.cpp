#include "adapters/windows/ansi_text.h"

#include <windows.h>

#include "adapters/windows/code_page_text.h"

namespace parvex::windows {

std::string ToAnsi(std::string_view text) { return ToCodePage(text, GetACP()); }

std::string FromAnsi(std::string_view bytes) { return FromCodePage(bytes, GetACP()); }

bool SystemCodePage::IsSingleByte() {
  CPINFO info;
  return GetCPInfo(CP_ACP, &info) != 0 && info.MaxCharSize == 1;
}

}  // namespace parvex::windows
