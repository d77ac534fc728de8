#pragma once

#include "seams/own_settings.h"
#include "seams/registry.h"

namespace parvex::windows {

/// The registry of this Windows. A 64-bit process looks in its own view first and then in the 32-bit one, since the
/// setup of the legacy application, a 32-bit program, writes there.
class SystemRegistry : public Registry, public OwnSettings {
 public:
  std::optional<std::string> LocalMachineString(std::string_view key, std::string_view valueName) override;
  std::optional<std::string> Read(RegistryHive hive, std::string_view key, std::string_view valueName) override;
  void Write(RegistryHive hive, std::string_view key, std::string_view valueName, std::string_view text) override;
};

}  // namespace parvex::windows
