#include "formats/text/text.h"

#include "formats/text/unicode.h"

namespace parvex {
namespace {

std::size_t UnitsOfSequence(std::size_t bytes) { return bytes == 4 ? 2 : 1; }

// Byte offset behind the first `units` units.
std::size_t OffsetOfUnits(std::string_view text, std::size_t units) {
  std::size_t pos = 0;
  while (pos < text.size() && units > 0) {
    const std::size_t bytes = FirstCharacter(text.substr(pos)).bytes;
    if (UnitsOfSequence(bytes) > units) {
      break;
    }
    units -= UnitsOfSequence(bytes);
    pos += bytes;
  }
  return pos;
}

}  // namespace

std::size_t LengthInUnits(std::string_view text) {
  std::size_t units = 0;
  for (std::size_t pos = 0; pos < text.size();) {
    const std::size_t bytes = FirstCharacter(text.substr(pos)).bytes;
    units += UnitsOfSequence(bytes);
    pos += bytes;
  }
  return units;
}

std::string_view FirstUnits(std::string_view text, std::size_t units) {
  return text.substr(0, OffsetOfUnits(text, units));
}

std::string_view DropUnits(std::string_view text, std::size_t units) { return text.substr(OffsetOfUnits(text, units)); }

std::string_view LastUnits(std::string_view text, std::size_t units) {
  const std::size_t length = LengthInUnits(text);
  return length <= units ? text : DropUnits(text, length - units);
}

std::string_view TrimBlanks(std::string_view text) {
  const std::size_t first = text.find_first_not_of(' ');
  if (first == std::string_view::npos) {
    return {};
  }
  return text.substr(first, text.find_last_not_of(' ') - first + 1);
}

std::string ToUpper(std::string_view text) {
  std::string upper(text);
  for (std::size_t i = 0; i < upper.size(); ++i) {
    const auto c = static_cast<unsigned char>(upper[i]);
    if (c >= 'a' && c <= 'z') {
      upper[i] = static_cast<char>(c - 0x20);
    } else if (c == 0xC3 && i + 1 < upper.size()) {
      // U+00E0..U+00FE without the division sign U+00F7 are C3 A0..C3 BE; their capitals stand 0x20 lower.
      const auto next = static_cast<unsigned char>(upper[i + 1]);
      if (next >= 0xA0 && next <= 0xBE && next != 0xB7) {
        upper[i + 1] = static_cast<char>(next - 0x20);
      }
      ++i;
    }
  }
  return upper;
}

bool EqualIgnoringCase(std::string_view a, std::string_view b) {
  return a.size() == b.size() && ToUpper(a) == ToUpper(b);
}

std::string ReplaceAll(std::string_view text, std::string_view what, std::string_view with) {
  std::string result;
  std::size_t from = 0;
  for (std::size_t hit = text.find(what); hit != std::string_view::npos; hit = text.find(what, from)) {
    result.append(text.substr(from, hit - from)).append(with);
    from = hit + what.size();
  }
  return result.append(text.substr(from));
}

}  // namespace parvex
