#include "legacy_standin/reports/rtf_text.h"

#include <cstdint>

#include "formats/text/unicode.h"

namespace parvex::standin {
namespace {

std::string Escaped(std::string_view text) {
  std::string escaped;
  for (const char16_t unit : ToUtf16(text)) {
    if (unit == u'\\' || unit == u'{' || unit == u'}') {
      escaped += {'\\', static_cast<char>(unit)};
    } else if (unit == u'\n') {
      escaped += "\\line ";
    } else if (unit >= 0x20 && unit < 0x7F) {
      escaped += static_cast<char>(unit);
    } else {
      // A signed 16-bit number, and a question mark for readers that do not know it.
      escaped += "\\u" + std::to_string(static_cast<std::int16_t>(unit)) + "?";
    }
  }
  return escaped;
}

}  // namespace

void RtfText::Heading(std::string_view text) { body_ += "{\\b\\fs28 " + Escaped(text) + "}\\par\r\n"; }

void RtfText::Line(std::string_view text) { body_ += Escaped(text) + "\\par\r\n"; }

std::string RtfText::Bytes() const {
  return "{\\rtf1\\ansi\\ansicpg1252\\uc1\\deff0{\\fonttbl{\\f0\\fswiss Arial;}}\\f0\\fs20\r\n" + body_ + "}\r\n";
}

}  // namespace parvex::standin
