#pragma once

#include <string>
#include <string_view>

namespace parvex::jet {

/// UTF-16 in little-endian bytes, as texts and names are stored. Bytes that are no UTF-8 become U+FFFD.
std::string Utf16Bytes(std::string_view utf8);
/// The reverse; a surrogate without its other half becomes U+FFFD.
std::string Utf8FromUtf16Bytes(std::string_view bytes);
/// A text as a column stores it: compressed when that is allowed and shorter.
std::string EncodeText(std::string_view utf8, bool compress);
/// The reverse, for either form.
std::string DecodeText(std::string_view stored);
/// The column bytes of a memo's text, or of an OLE object, that is kept inside the row.
std::string EncodeLongValue(std::string_view bytes);

}  // namespace parvex::jet
