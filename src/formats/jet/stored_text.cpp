#include "formats/jet/stored_text.h"

#include "formats/text/encoded_text.h"
#include "formats/text/unicode.h"

namespace parvex::jet {

namespace {

constexpr std::string_view kCompressedMark = "\xFF\xFE";
/// Texts of more characters are stored as they are.
constexpr std::size_t kLongestCompressed = 1024;

/// The compressed form: the mark FF FE, then one byte a character up to U+00FF; a zero byte switches to two bytes a
/// character and back. Nothing when a character has a low byte of zero, which would read as a switch.
std::optional<std::string> Compress(std::string_view utf16) {
  std::string compressed(kCompressedMark);
  bool single = true;
  for (std::size_t i = 0; i < utf16.size(); i += 2) {
    if (utf16[i] == 0) return std::nullopt;
    const bool fits = utf16[i + 1] == 0;
    if (fits != single) compressed += '\0';
    single = fits;
    compressed += utf16.substr(i, fits ? 1 : 2);
  }
  return compressed;
}

}  // namespace

std::string Utf16Bytes(std::string_view utf8) { return BytesOf(ToUtf16(utf8), TextEncoding::Utf16Little); }

std::string Utf8FromUtf16Bytes(std::string_view bytes) { return FromUtf16(UnitsOf(bytes, TextEncoding::Utf16Little)); }

std::string EncodeText(std::string_view utf8, bool compress) {
  std::string plain = Utf16Bytes(utf8);
  // A text that itself begins with the mark would be taken for a compressed one.
  const bool misleading = plain.starts_with(kCompressedMark);
  if (!misleading && (!compress || plain.size() / 2 > kLongestCompressed)) return plain;
  const std::optional<std::string> compressed = Compress(plain);
  return compressed && (misleading || compressed->size() < plain.size()) ? *compressed : plain;
}

std::string DecodeText(std::string_view stored) {
  if (!stored.starts_with(kCompressedMark)) return Utf8FromUtf16Bytes(stored);
  std::string plain;
  bool single = true;
  for (std::size_t at = kCompressedMark.size(); at < stored.size();) {
    if (stored[at] == '\0') {
      single = !single;
      ++at;
      continue;
    }
    plain += stored.substr(at, single ? 1 : 2);
    if (single) plain += '\0';
    at += single ? 1 : 2;
  }
  return Utf8FromUtf16Bytes(plain);
}

std::string EncodeLongValue(std::string_view bytes) {
  constexpr std::uint32_t kInsideRow = 0x80000000u;
  std::string header;
  Append32(header, kInsideRow | static_cast<std::uint32_t>(bytes.size()));
  header.append(8, '\0');
  return header.append(bytes);
}

std::optional<std::string> TextForm::Encode(std::string_view utf8, bool compress) const {
  return codePage_ ? codePage_->Encode(utf8) : EncodeText(utf8, compress);
}

std::string TextForm::Decode(std::string_view stored) const {
  return codePage_ ? codePage_->Decode(stored) : DecodeText(stored);
}

std::optional<std::string> TextForm::EncodePlain(std::string_view utf8) const {
  return codePage_ ? codePage_->Encode(utf8) : Utf16Bytes(utf8);
}

std::string TextForm::DecodePlain(std::string_view stored) const {
  return codePage_ ? codePage_->Decode(stored) : Utf8FromUtf16Bytes(stored);
}

}  // namespace parvex::jet
