#include <windows.h>

#include "formats/text/letter_case.h"
#include "formats/text/unicode.h"

namespace parvex {

std::string FoldName(std::string_view name) {
  std::u16string units = ToUtf16(name);
  CharUpperBuffW(reinterpret_cast<wchar_t*>(units.data()), static_cast<DWORD>(units.size()));
  return FromUtf16(units);
}

}  // namespace parvex
