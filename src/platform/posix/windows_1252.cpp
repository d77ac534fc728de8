#include "platform/posix/windows_1252.h"

#include <algorithm>
#include <array>

#include "platform/text.h"

namespace parvex::posix {
namespace {

// What the bytes 80 to 9F stand for; every other byte is the character of the same number.
constexpr std::array<char16_t, 32> kUpperControls = {
    0x20AC, 0x0081, 0x201A, 0x0192, 0x201E, 0x2026, 0x2020, 0x2021, 0x02C6, 0x2030, 0x0160,
    0x2039, 0x0152, 0x008D, 0x017D, 0x008F, 0x0090, 0x2018, 0x2019, 0x201C, 0x201D, 0x2022,
    0x2013, 0x2014, 0x02DC, 0x2122, 0x0161, 0x203A, 0x0153, 0x009D, 0x017E, 0x0178};

bool IsAscii(std::string_view text) {
  return std::all_of(text.begin(), text.end(), [](char c) { return static_cast<unsigned char>(c) < 0x80; });
}

char ByteOf(char16_t unit) {
  if (unit < 0x80 || (unit >= 0xA0 && unit <= 0xFF)) {
    return static_cast<char>(unit);
  }
  const auto found = std::find(kUpperControls.begin(), kUpperControls.end(), unit);
  return found == kUpperControls.end() ? '?' : static_cast<char>(0x80 + (found - kUpperControls.begin()));
}

char16_t UnitOf(char c) {
  const auto byte = static_cast<unsigned char>(c);
  return byte >= 0x80 && byte < 0xA0 ? kUpperControls[byte - 0x80] : byte;
}

}  // namespace

std::string Windows1252::ToAnsi(std::string_view text) {
  if (IsAscii(text)) {
    return std::string(text);
  }
  const std::u16string units = ToUtf16(text);
  std::string bytes(units.size(), '\0');
  std::transform(units.begin(), units.end(), bytes.begin(), ByteOf);
  return bytes;
}

std::string Windows1252::FromAnsi(std::string_view bytes) {
  if (IsAscii(bytes)) {
    return std::string(bytes);
  }
  std::u16string units(bytes.size(), u'\0');
  std::transform(bytes.begin(), bytes.end(), units.begin(), UnitOf);
  return FromUtf16(units);
}

}  // namespace parvex::posix
