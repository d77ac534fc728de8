#include "adapters/windows/system_registry.h"

#include <windows.h>

#include "adapters/windows/ansi_text.h"

namespace parvex::windows {
namespace {

// Text of an open key's value with its terminating zero removed; nothing when it is missing or no text.
std::optional<std::string> ReadText(HKEY key, const std::string& valueName) {
  DWORD type = 0;
  DWORD size = 0;
  if (RegQueryValueExA(key, valueName.c_str(), nullptr, &type, nullptr, &size) != ERROR_SUCCESS ||
      (type != REG_SZ && type != REG_EXPAND_SZ)) {
    return std::nullopt;
  }
  std::string bytes(size, '\0');
  if (RegQueryValueExA(key, valueName.c_str(), nullptr, &type, reinterpret_cast<BYTE*>(bytes.data()), &size) !=
      ERROR_SUCCESS) {
    return std::nullopt;
  }
  bytes.resize(size);
  if (!bytes.empty() && bytes.back() == '\0') {
    bytes.pop_back();
  }
  return FromAnsi(bytes);
}

std::optional<std::string> ReadView(const std::string& key, const std::string& valueName, REGSAM view) {
  HKEY opened = nullptr;
  if (RegOpenKeyExA(HKEY_LOCAL_MACHINE, key.c_str(), 0, KEY_QUERY_VALUE | view, &opened) != ERROR_SUCCESS) {
    return std::nullopt;
  }
  std::optional<std::string> text = ReadText(opened, valueName);
  RegCloseKey(opened);
  return text;
}

}  // namespace

std::optional<std::string> SystemRegistry::LocalMachineString(std::string_view key, std::string_view valueName) {
  while (!key.empty() && key.back() == '\\') {
    key.remove_suffix(1);
  }
  const std::string ansiKey = ToAnsi(key);
  const std::string ansiName = ToAnsi(valueName);
  std::optional<std::string> text = ReadView(ansiKey, ansiName, 0);
  return text ? text : ReadView(ansiKey, ansiName, KEY_WOW64_32KEY);
}

}  // namespace parvex::windows
