#pragma once

#include <windows.h>

#include <span>
#include <string>
#include <string_view>

#include "com_server/class_factory.h"

namespace parvex::com {

/// How a module is registered.
struct RegistrationKind {
  bool forUser = false;  ///< for the current user only, which needs no administrator; else for the machine
  /// The id of an application whose surrogate process serves the classes to programs that cannot load the module, or
  /// ask for a local server. Null for none.
  const GUID* surrogate = nullptr;
};

/// Of the words "user" and "surrogate", in any letter case, with blanks or commas between them. An AutomationError
/// (E_INVALIDARG) that names any other word, and "surrogate" where the server has no `application` for one.
RegistrationKind ReadRegistrationKind(std::wstring_view words, const GUID* application);

/// Registers the classes of a module, in-process and apartment-threaded, under versioned and version-independent
/// programmatic ids, and the type library that is embedded in the module, if `libraryId` names one. The first failure
/// is an AutomationError, and what had been written then is undone.
void RegisterModule(std::span<const ComClass> classes, const std::wstring& modulePath, const GUID* libraryId,
                    const RegistrationKind& kind = {});

/// Removes what RegisterModule writes, for the user or the machine. What the module of the other bitness needs as well
/// stays while that is registered: programmatic ids, the application, the type library's version and its interfaces. A
/// programmatic id that meanwhile names another class stays too. Goes on behind a failure and reports the first one.
void UnregisterModule(std::span<const ComClass> classes, const std::wstring& modulePath, const GUID* libraryId,
                      const RegistrationKind& kind = {});

}  // namespace parvex::com
