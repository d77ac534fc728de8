#pragma once

#include <cstddef>
#include <string>
#include <string_view>

namespace parvex::xml {

/// Offset of the first byte that does not belong to a character XML can carry: bytes that are not UTF-8, control
/// characters other than tab, line feed and carriage return, surrogates, U+FFFE and U+FFFF. npos when there is none.
std::size_t FindForbidden(std::string_view text);

/// Whether `text` is a name without colon.
bool IsPlainName(std::string_view text);

/// White space as XML knows it.
inline bool IsBlank(char c) { return c == ' ' || c == '\t' || c == '\n' || c == '\r'; }
bool IsBlank(std::string_view text);

/// "line L, column C" of an offset, both from 1, columns in bytes.
std::string PlaceOf(std::string_view text, std::size_t offset);

}  // namespace parvex::xml
