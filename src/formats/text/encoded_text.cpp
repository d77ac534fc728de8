#include "formats/text/encoded_text.h"

#include "formats/text/unicode.h"

namespace parvex {

TextEncoding EncodingOf(std::string_view bytes) {
  for (const TextEncoding encoding : {TextEncoding::Utf8, TextEncoding::Utf16Little, TextEncoding::Utf16Big}) {
    if (bytes.starts_with(MarkOf(encoding))) {
      return encoding;
    }
  }
  return TextEncoding::Unmarked;
}

std::string_view MarkOf(TextEncoding encoding) {
  switch (encoding) {
    case TextEncoding::Utf8:
      return "\xEF\xBB\xBF";
    case TextEncoding::Utf16Little:
      return "\xFF\xFE";
    case TextEncoding::Utf16Big:
      return "\xFE\xFF";
    case TextEncoding::Unmarked:
      break;
  }
  return {};
}

std::u16string UnitsOf(std::string_view bytes, TextEncoding byteOrder) {
  const std::size_t low = byteOrder == TextEncoding::Utf16Little ? 0 : 1;
  std::u16string units(bytes.size() / 2, u'\0');
  for (std::size_t i = 0; i < units.size(); ++i) {
    const auto lowByte = static_cast<unsigned char>(bytes[2 * i + low]);
    const auto highByte = static_cast<unsigned char>(bytes[2 * i + 1 - low]);
    units[i] = static_cast<char16_t>(highByte << 8 | lowByte);
  }
  return units;
}

std::string BytesOf(std::u16string_view units, TextEncoding byteOrder) {
  const std::size_t low = byteOrder == TextEncoding::Utf16Little ? 0 : 1;
  std::string bytes(2 * units.size(), '\0');
  for (std::size_t i = 0; i < units.size(); ++i) {
    bytes[2 * i + low] = static_cast<char>(units[i] & 0xFF);
    bytes[2 * i + 1 - low] = static_cast<char>(units[i] >> 8);
  }
  return bytes;
}

std::optional<std::string> MarkedText(std::string_view bytes) {
  const TextEncoding encoding = EncodingOf(bytes);
  if (encoding == TextEncoding::Unmarked) {
    return std::nullopt;
  }
  bytes.remove_prefix(MarkOf(encoding).size());
  return IsUtf16(encoding) ? FromUtf16(UnitsOf(bytes, encoding)) : std::string(bytes);
}

std::string WithMark(std::string_view text, TextEncoding encoding) {
  std::string bytes(MarkOf(encoding));
  return bytes.append(IsUtf16(encoding) ? BytesOf(ToUtf16(text), encoding) : std::string(text));
}

}  // namespace parvex
