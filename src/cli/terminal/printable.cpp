#include "cli/terminal/printable.h"

#include <cstdio>

#include "formats/text/terminal_text.h"
#include "formats/text/unicode.h"

namespace parvex::cli {

std::string Printable(std::string_view text) { return TerminalLine(text); }

std::string EscapedJson(std::string_view json) {
  std::string escaped;
  escaped.reserve(json.size());
  for (std::size_t pos = 0; pos < json.size();) {
    const std::size_t begin = pos;
    const char32_t code = NextCodePoint(json, pos);
    if (code >= 0x20 && ControlsTerminal(code)) {  // below stand only the line feeds between members
      char text[16];
      std::snprintf(text, sizeof text, "\\u%04X", static_cast<unsigned>(code));
      escaped += text;
    } else {
      escaped += json.substr(begin, pos - begin);
    }
  }
  return escaped;
}

std::string Counted(std::size_t count, const std::string& noun) {
  return std::to_string(count) + " " + noun + (count == 1 ? "" : "s");
}

}  // namespace parvex::cli
