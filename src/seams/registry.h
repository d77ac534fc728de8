#pragma once

#include <optional>
#include <string>
#include <string_view>

namespace parvex {

/// String values under the machine's local-machine hive, read only.
class Registry {
 public:
  virtual ~Registry() = default;

  /// The value's text, nothing when the key or the value does not exist or may not be read. Letter case of key and
  /// value name is ignored; a backslash at the key's end does not matter.
  virtual std::optional<std::string> LocalMachineString(std::string_view key, std::string_view valueName) = 0;
};

}  // namespace parvex
