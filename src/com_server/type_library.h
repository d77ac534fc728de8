#pragma once

#include <oaidl.h>
#include <windows.h>

#include <string>

#include "adapters/windows/com_pointer.h"
#include "adapters/windows/this_module.h"

namespace parvex::com {

using windows::ThisModule;
using windows::ThisModulePath;

/// The type library that is embedded in a file, or a type library file; an AutomationError when there is none.
windows::ComPointer<ITypeLib> LoadTypeLibrary(const std::wstring& path);

/// The type information of an interface of this module's own library. Loaded once and kept; an AutomationError when the
/// library is missing. Safe to be called from any thread.
windows::ComPointer<ITypeInfo> TypeInfoOf(REFIID interfaceId);
/// Lets go of what is kept.
void DropTypeInfos();

}  // namespace parvex::com
