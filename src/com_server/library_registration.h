#pragma once

#include <string>

#include "com_server/registry_changes.h"

namespace parvex::com {

// The registration of a module's embedded type library, with the interfaces that it describes: calls of them are
// carried to other apartments and processes by the library. It is written here and not by the system's own function,
// which cannot be undone half-way, takes the interfaces of the other bitness along when it unregisters, and does not do
// it for one user everywhere.

/// Interfaces are registered for programs of both bitnesses, either of which can read the library of the other. An
/// AutomationError when the module has no type library, or the system refuses.
void RegisterLibrary(RegistryChanges& changes, const std::wstring& modulePath);

/// Takes out this bitness's library; version and interfaces go with the last one. What is not registered is no error;
/// an AutomationError when the module has no type library, or the system refuses.
void UnregisterLibrary(ClassesKey classes, const std::wstring& modulePath);

}  // namespace parvex::com
