#include <algorithm>

#include "formats/text/letter_case.h"
#include "formats/text/text.h"
#include "formats/text/unicode.h"

namespace parvex {

std::string FoldName(std::string_view name) {
  if (std::ranges::all_of(name, [](char c) { return static_cast<unsigned char>(c) < 0x80; })) {
    return ToUpper(name);
  }
  std::u16string units = ToUtf16(name);
  std::ranges::transform(units, units.begin(), CapitalOf);
  return FromUtf16(units);
}

}  // namespace parvex
