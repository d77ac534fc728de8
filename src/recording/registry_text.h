#pragma once

#include <span>
#include <string>

namespace parvex::recording {

struct RegistryValue {
  std::string key;  ///< with its hive
  std::string name;
  std::string text;
};

/// The values as the Windows registry editor exports them, in UTF-16: string values, those with control characters as
/// hexadecimal bytes. Values of one key follow each other.
std::string RegistryBytes(std::span<const RegistryValue> values);

}  // namespace parvex::recording
