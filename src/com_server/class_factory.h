#pragma once

#include <windows.h>

#include <functional>
#include <span>
#include <string>

#include "adapters/windows/com_pointer.h"

namespace parvex::com {

/// A class that a module offers.
struct ComClass {
  CLSID id;
  std::wstring programmaticId;  ///< version-independent, for example L"Parvex.TagCls"
  std::wstring description;
  /// Makes an object; AutomationErrors reach the creator as its error information.
  std::function<windows::ComPointer<IUnknown>()> create;
};

/// The answer of DllGetClassObject: a class factory of the class with that id. The classes outlive the module's use.
HRESULT GetClassFactory(std::span<const ComClass> classes, REFCLSID classId, REFIID interfaceId, void** factory);

/// The answer of DllCanUnloadNow.
HRESULT CanUnloadNow();

}  // namespace parvex::com
