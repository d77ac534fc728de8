#include "formats/text/terminal_text.h"

#include <cstddef>

#include "formats/text/unicode.h"

namespace parvex {

bool ControlsTerminal(char32_t character) {
  return character < 0x20 || (character >= 0x7F && character < 0xA0) || (character >= 0x2028 && character <= 0x202E) ||
         (character >= 0x2066 && character <= 0x2069) || character == 0x200E || character == 0x200F ||
         character == 0x061C;
}

std::string TerminalText(std::string_view text) {
  std::string shown;
  shown.reserve(text.size());
  for (std::size_t pos = 0; pos < text.size();) {
    const char32_t code = NextCodePoint(text, pos);
    if (code == U'\r') {
      shown += pos < text.size() && text[pos] == '\n' ? "" : "\n";
    } else if (code == U'\n' || code == U'\t') {
      shown += static_cast<char>(code);
    } else {
      AppendUtf8(shown, ControlsTerminal(code) || IsSurrogate(code) ? kReplacementCharacter : code);
    }
  }
  return shown;
}

std::string TerminalLine(std::string_view text) {
  std::string line;
  line.reserve(text.size());
  for (std::size_t pos = 0; pos < text.size();) {
    const char32_t code = NextCodePoint(text, pos);
    if (code == U'\t' || code == U'\n' || code == U'\r') {
      line += ' ';
    } else {
      AppendUtf8(line, ControlsTerminal(code) || IsSurrogate(code) ? kReplacementCharacter : code);
    }
  }
  return line;
}

}  // namespace parvex
