#include "adapters/windows/wide_text.h"

#include "formats/text/unicode.h"

namespace parvex::windows {

std::wstring Widen(std::string_view text) { return EncodeUtf16<wchar_t>(text, LoneSurrogates::Kept); }

std::string Narrow(std::wstring_view text) { return DecodeUtf16<wchar_t>(text, LoneSurrogates::Kept); }

}  // namespace parvex::windows
