#pragma once

#include <span>

#include "com_server/class_factory.h"

namespace parvex::com {

/// What the entry points of a DLL (entry_points/exports.cpp) serve.
struct Server {
  std::span<const ComClass> classes;
  const GUID* libraryId = nullptr;             ///< the embedded type library; null for none
  void (*checkBeforeRegistering)() = nullptr;  ///< refuses by an AutomationError
  const GUID* applicationId = nullptr;         ///< for a surrogate process; null where none is offered
};

/// Defined once by each DLL.
Server ThisServer();

}  // namespace parvex::com
