#include "formats/text/text.h"

namespace parvex {
namespace {

bool IsContinuation(char c) { return (static_cast<unsigned char>(c) & 0xC0) == 0x80; }

// Bytes of the UTF-8 sequence that begins at `pos`; 1 for a byte that begins no complete one.
std::size_t SequenceLength(std::string_view text, std::size_t pos) {
  const auto lead = static_cast<unsigned char>(text[pos]);
  if (lead < 0xC2 || lead > 0xF4) {
    return 1;
  }
  const std::size_t length = lead >= 0xF0 ? 4 : lead >= 0xE0 ? 3 : 2;
  if (pos + length > text.size()) {
    return 1;
  }
  for (std::size_t i = 1; i < length; ++i) {
    if (!IsContinuation(text[pos + i])) {
      return 1;
    }
  }
  return length;
}

std::size_t UnitsOfSequence(std::size_t bytes) { return bytes == 4 ? 2 : 1; }

// Byte offset behind the first `units` units.
std::size_t OffsetOfUnits(std::string_view text, std::size_t units) {
  std::size_t pos = 0;
  while (pos < text.size() && units > 0) {
    const std::size_t bytes = SequenceLength(text, pos);
    if (UnitsOfSequence(bytes) > units) {
      break;
    }
    units -= UnitsOfSequence(bytes);
    pos += bytes;
  }
  return pos;
}

constexpr char32_t kReplacement = 0xFFFD;

bool IsHighSurrogate(char32_t unit) { return unit >= 0xD800 && unit < 0xDC00; }
bool IsLowSurrogate(char32_t unit) { return unit >= 0xDC00 && unit < 0xE000; }

// The character that one sequence of SequenceLength bytes stands for.
char32_t CharacterAt(std::string_view sequence) {
  static constexpr char32_t kSmallest[] = {0, 0, 0x80, 0x800, 0x10000};
  const auto lead = static_cast<unsigned char>(sequence[0]);
  if (sequence.size() == 1) {
    return lead < 0x80 ? lead : kReplacement;
  }
  char32_t character = lead & (0x7Fu >> sequence.size());
  for (const char c : sequence.substr(1)) {
    character = (character << 6) | (static_cast<unsigned char>(c) & 0x3Fu);
  }
  const bool valid = character >= kSmallest[sequence.size()] && character <= 0x10FFFF && !IsHighSurrogate(character) &&
                     !IsLowSurrogate(character);
  return valid ? character : kReplacement;
}

void AppendUtf8(std::string& text, char32_t character) {
  const auto put = [&text](char32_t byte) { text.push_back(static_cast<char>(byte)); };
  if (character < 0x80) {
    put(character);
  } else if (character < 0x800) {
    put(0xC0 | (character >> 6));
    put(0x80 | (character & 0x3F));
  } else if (character < 0x10000) {
    put(0xE0 | (character >> 12));
    put(0x80 | ((character >> 6) & 0x3F));
    put(0x80 | (character & 0x3F));
  } else {
    put(0xF0 | (character >> 18));
    put(0x80 | ((character >> 12) & 0x3F));
    put(0x80 | ((character >> 6) & 0x3F));
    put(0x80 | (character & 0x3F));
  }
}

}  // namespace

std::size_t LengthInUnits(std::string_view text) {
  std::size_t units = 0;
  for (std::size_t pos = 0; pos < text.size();) {
    const std::size_t bytes = SequenceLength(text, pos);
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

std::u16string ToUtf16(std::string_view text) {
  std::u16string units;
  units.reserve(text.size());
  for (std::size_t pos = 0; pos < text.size();) {
    const std::size_t bytes = SequenceLength(text, pos);
    const char32_t character = CharacterAt(text.substr(pos, bytes));
    if (character >= 0x10000) {
      units.push_back(static_cast<char16_t>(0xD7C0 + (character >> 10)));
      units.push_back(static_cast<char16_t>(0xDC00 + (character & 0x3FF)));
    } else {
      units.push_back(static_cast<char16_t>(character));
    }
    pos += bytes;
  }
  return units;
}

std::string FromUtf16(std::u16string_view units) {
  std::string text;
  text.reserve(units.size());
  for (std::size_t i = 0; i < units.size(); ++i) {
    char32_t character = units[i];
    if (IsHighSurrogate(units[i]) && i + 1 < units.size() && IsLowSurrogate(units[i + 1])) {
      character = 0x10000 + ((character & 0x3FF) << 10) + (units[++i] & 0x3FF);
    } else if (IsHighSurrogate(units[i]) || IsLowSurrogate(units[i])) {
      character = kReplacement;
    }
    AppendUtf8(text, character);
  }
  return text;
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
