#pragma once

#include <memory>
#include <optional>
#include <string>
#include <string_view>

#include "formats/jet/code_page.h"
#include "formats/jet/format.h"

namespace parvex::jet {

/// UTF-16 in little-endian bytes, as Jet 4 stores texts and names. Bytes that are no UTF-8 become U+FFFD.
std::string Utf16Bytes(std::string_view utf8);
/// The reverse; a surrogate without its other half becomes U+FFFD.
std::string Utf8FromUtf16Bytes(std::string_view bytes);
/// A text as a column of Jet 4 stores it: compressed when that is allowed and shorter.
std::string EncodeText(std::string_view utf8, bool compress);
/// The reverse, for either form.
std::string DecodeText(std::string_view stored);
/// The column bytes of a memo's text, or of an OLE object, that is kept inside the row.
std::string EncodeLongValue(std::string_view bytes);

/// How the texts of one file are stored: those of Jet 4 in UTF-16, compressed or not, those of Jet 3 in a code page.
class TextForm {
 public:
  /// Of Jet 4.
  TextForm() = default;
  /// Of Jet 3.
  explicit TextForm(std::shared_ptr<TextCodec> codePage) : codePage_(std::move(codePage)) {}

  Version FileVersion() const { return codePage_ ? Version::Jet3 : Version::Jet4; }

  /// Nothing when the file's code page lacks a character of the text.
  std::optional<std::string> Encode(std::string_view utf8, bool compress) const;
  std::string Decode(std::string_view stored) const;

  // Names in table definitions and texts of fixed length, which have no compressed form.
  std::optional<std::string> EncodePlain(std::string_view utf8) const;
  std::string DecodePlain(std::string_view stored) const;

 private:
  std::shared_ptr<TextCodec> codePage_;
};

}  // namespace parvex::jet
