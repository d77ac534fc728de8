#pragma once

#include <string>

namespace parvex::com {

/// The identifiers by which a build finds the message router of an installation.
struct RouterIds {
  std::string classId;      ///< with braces
  std::string interfaceId;  ///< of the interface that has SendRequestMessage
};

/// Reads them from a type library, or a file that has one in it: the class with an interface that has a method
/// SendRequestMessage, the class's default interface only when no other has it. An AutomationError that names the file
/// when it has no type library, or no such class.
RouterIds ReadRouterIds(const std::wstring& path);

}  // namespace parvex::com
