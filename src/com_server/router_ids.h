#pragma once

#include <string>

#include "formats/router_ids/router_ids.h"

namespace parvex::com {

/// Reads the identifiers of a message router from a type library, or a file that has one in it: the class with an
/// interface that has a method SendRequestMessage, the class's default interface only when no other has it. An
/// AutomationError that names the file when it has no type library, or no such class.
RouterIds ReadRouterIds(const std::wstring& path);

}  // namespace parvex::com
