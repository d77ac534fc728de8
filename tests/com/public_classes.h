#pragma once

#include <windows.h>

#include <string>
#include <vector>

namespace parvex::test {

/// A public class: its members in the order of their slots, which is the order of their ids. An integrator's program is
/// compiled against it, so it never changes.
struct PublicClass {
  std::string name;
  CLSID id;
  IID interfaceId;
  std::vector<std::string> texts;   ///< properties that hold a text
  std::vector<std::string> arrays;  ///< properties that hold references
  std::vector<std::string> methods;

  std::string ProgrammaticId() const { return "Parvex." + name; }
};

const std::vector<PublicClass>& PublicClasses();
/// Those that have properties.
std::vector<PublicClass> DataClasses();

}  // namespace parvex::test
