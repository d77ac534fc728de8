#include "cli/terminal/printable.h"

#include "formats/text/unicode.h"

namespace parvex::cli {
namespace {

bool IsControl(char32_t character) {
  return character < 0x20 || (character >= 0x7F && character < 0xA0) || (character >= 0x2028 && character <= 0x202E) ||
         (character >= 0x2066 && character <= 0x2069) || character == 0x200E || character == 0x200F;
}

}  // namespace

std::string Printable(std::string_view text) {
  std::u16string units = ToUtf16(text);
  for (char16_t& unit : units) {
    if (unit == u'\t' || unit == u'\n' || unit == u'\r') {
      unit = u' ';
    } else if (IsControl(unit)) {
      unit = u'\uFFFD';
    }
  }
  return FromUtf16(units);
}

std::string Counted(std::size_t count, const std::string& noun) {
  return std::to_string(count) + " " + noun + (count == 1 ? "" : "s");
}

}  // namespace parvex::cli
