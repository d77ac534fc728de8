#pragma once

#include <optional>
#include <string>
#include <string_view>

namespace parvex {

enum class RegistryHive { CurrentUser, LocalMachine };

/// This system's own settings: string values of the registry, the user's and the machine's. Letter case of keys and
/// value names is ignored; a backslash at a key's end does not matter.
class OwnSettings {
 public:
  virtual ~OwnSettings() = default;

  /// The value's text; nothing when the key or the value does not exist, is no text or may not be read. Of the machine
  /// only what programs of this bitness see is read, so that values that belong together come from one key.
  virtual std::optional<std::string> Read(RegistryHive hive, std::string_view key, std::string_view valueName) = 0;

  /// Sets a value, making the key; for the machine so that programs of either bitness see it. An AutomationError (75)
  /// that names the key when the system refuses.
  virtual void Write(RegistryHive hive, std::string_view key, std::string_view valueName, std::string_view text) = 0;
};

}  // namespace parvex
