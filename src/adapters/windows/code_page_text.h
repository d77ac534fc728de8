#pragma once

#include <windows.h>

#include <optional>
#include <string>
#include <string_view>

namespace parvex::windows {

// Between UTF-8 text and the bytes of a code page that is given by its number.

/// The system's two conversion functions, for tests that put stricter ones in their place. Code pages differ in what
/// the functions may be asked: a flag that is usual elsewhere makes them fail for UTF-8 and the like.
struct SystemConversions {
  decltype(&::WideCharToMultiByte) toBytes = &::WideCharToMultiByte;
  decltype(&::MultiByteToWideChar) toUnits = &::MultiByteToWideChar;
};

/// Bytes of a text. A character that the code page lacks becomes "?", never a look-alike; half of a surrogate pair
/// becomes U+FFFD where the code page has all characters. A conversion that the system refuses is an AutomationError
/// (5) that names the code page.
std::string ToCodePage(std::string_view text, UINT codePage, const SystemConversions& system = {});
/// Text of bytes. Bytes that are no character become U+FFFD or a character of the system's choice. Errors as above.
std::string FromCodePage(std::string_view bytes, UINT codePage, const SystemConversions& system = {});

/// Whether texts can be converted with it, by the functions or by other means of the system.
bool IsKnownCodePage(UINT codePage);

/// Nothing when the code page lacks a character of the text, or is not known.
std::optional<std::string> ToCodePageExactly(std::string_view text, UINT codePage,
                                             const SystemConversions& system = {});
/// Nothing when some bytes are no character (as far as the system tells), or the code page is not known.
std::optional<std::string> FromCodePageExactly(std::string_view bytes, UINT codePage,
                                               const SystemConversions& system = {});

}  // namespace parvex::windows
