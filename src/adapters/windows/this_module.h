#pragma once

#include <windows.h>

#include <string>

namespace parvex::windows {

/// The DLL or program that this code is linked into.
HMODULE ThisModule();
/// Its path.
std::wstring ThisModulePath();

}  // namespace parvex::windows
