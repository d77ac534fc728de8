#include "formats/text/windows_1252.h"

#include <algorithm>
#include <array>
#include <cstdint>
#include <cstring>
#include <iterator>

#include "formats/text/unicode.h"

namespace parvex::posix {
namespace {

// What the bytes 80 to 9F stand for; every other byte is the character of the same number.
constexpr std::array<char16_t, 32> kUpperControls = {0x20AC, 0x0081, 0x201A, 0x0192, 0x201E, 0x2026, 0x2020, 0x2021,
                                                     0x02C6, 0x2030, 0x0160, 0x2039, 0x0152, 0x008D, 0x017D, 0x008F,
                                                     0x0090, 0x2018, 0x2019, 0x201C, 0x201D, 0x2022, 0x2013, 0x2014,
                                                     0x02DC, 0x2122, 0x0161, 0x203A, 0x0153, 0x009D, 0x017E, 0x0178};

bool IsAscii(char c) { return static_cast<unsigned char>(c) < 0x80; }

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

// Where the ASCII at the beginning of `text` ends; eight bytes a step, since most texts are nothing else.
std::size_t AsciiPrefix(std::string_view text) {
  std::size_t pos = 0;
  for (std::uint64_t word; pos + sizeof word <= text.size(); pos += sizeof word) {
    std::memcpy(&word, text.data() + pos, sizeof word);
    if ((word & 0x8080808080808080u) != 0) {
      break;
    }
  }
  while (pos < text.size() && IsAscii(text[pos])) {
    ++pos;
  }
  return pos;
}

// `text` with every run of bytes beyond ASCII handed to `convert(run, result)`, and the runs between copied.
template <typename Convert>
std::string ConvertRuns(std::string_view text, Convert convert) {
  std::string result;
  result.reserve(text.size());
  while (!text.empty()) {
    const std::size_t ascii = AsciiPrefix(text);
    result.append(text.substr(0, ascii));
    text.remove_prefix(ascii);
    const auto end = std::find_if(text.begin(), text.end(), IsAscii);
    const std::string_view beyond(text.begin(), end);
    convert(beyond, result);
    text.remove_prefix(beyond.size());
  }
  return result;
}

}  // namespace

std::string Windows1252::ToAnsi(std::string_view text) {
  return ConvertRuns(text, [](std::string_view run, std::string& bytes) {
    const std::u16string units = ToUtf16(run);
    std::transform(units.begin(), units.end(), std::back_inserter(bytes), ByteOf);
  });
}

std::string Windows1252::FromAnsi(std::string_view bytes) {
  return ConvertRuns(bytes, [](std::string_view run, std::string& text) {
    std::u16string units(run.size(), u'\0');
    std::transform(run.begin(), run.end(), units.begin(), UnitOf);
    text.append(FromUtf16(units));
  });
}

}  // namespace parvex::posix
