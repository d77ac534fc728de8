#pragma once

#include <windows.h>

#include <optional>
#include <string>
#include <string_view>

namespace parvex::windows {

// What the system knows of encodings beyond its conversion functions, through its component for texts of many
// languages. COM has to be initialised on the thread. Nothing where the component is missing.

/// The code page of an encoding's name in a document.
std::optional<UINT> CodePageByMlang(std::string_view encoding);

/// Conversions with code pages that the conversion functions do not know; nothing when this one does not either.
std::optional<std::wstring> UnitsByMlang(std::string_view bytes, UINT codePage);
std::optional<std::string> BytesByMlang(std::wstring_view units, UINT codePage);

}  // namespace parvex::windows
