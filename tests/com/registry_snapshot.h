#pragma once

#include <map>
#include <string>

namespace parvex::test {

/// Every key and value below Software\Classes, of the machine and of the user: path to type and content.
using RegistrySnapshot = std::map<std::wstring, std::string>;
RegistrySnapshot SnapshotOfClasses();

/// What the second one has more, less or otherwise, a line each; empty when they are equal.
std::string Difference(const RegistrySnapshot& before, const RegistrySnapshot& after);

}  // namespace parvex::test
