#pragma once

#include <span>

#include "com_server/class_factory.h"

namespace parvex::com {

/// What the four entry points of a DLL (dll/exports.cpp) serve.
struct Server {
  std::span<const ComClass> classes;
  const GUID* libraryId = nullptr;             ///< the embedded type library; null for none
  void (*checkBeforeRegistering)() = nullptr;  ///< refuses by an AutomationError
};

/// Defined once by each DLL.
Server ThisServer();

}  // namespace parvex::com
