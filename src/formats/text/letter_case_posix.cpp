#include <locale.h>
#include <wctype.h>

#include <algorithm>

#include "formats/text/letter_case.h"
#include "formats/text/text.h"
#include "formats/text/unicode.h"

namespace parvex {
namespace {

bool IsAscii(std::string_view text) {
  return std::all_of(text.begin(), text.end(), [](char c) { return static_cast<unsigned char>(c) < 0x80; });
}

}  // namespace

std::string FoldName(std::string_view name) {
  // The letters of the C library's own UTF-8 locale, whatever locale the process runs in.
  static const locale_t letters = newlocale(LC_CTYPE_MASK, "C.UTF-8", nullptr);
  if (letters == nullptr || IsAscii(name)) {
    return ToUpper(name);
  }
  std::u16string units = ToUtf16(name);
  for (char16_t& unit : units) {
    const wint_t upper = towupper_l(unit, letters);
    unit = upper <= 0xFFFF ? static_cast<char16_t>(upper) : unit;
  }
  return FromUtf16(units);
}

}  // namespace parvex
