#include "adapters/windows/system_registry.h"

#include <windows.h>

#include "adapters/windows/ansi_text.h"
#include "adapters/windows/wide_text.h"
#include "seams/automation_error.h"

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

std::optional<std::string> ReadView(HKEY hive, const std::string& key, const std::string& valueName, REGSAM view) {
  HKEY opened = nullptr;
  if (RegOpenKeyExA(hive, key.c_str(), 0, KEY_QUERY_VALUE | view, &opened) != ERROR_SUCCESS) {
    return std::nullopt;
  }
  std::optional<std::string> text = ReadText(opened, valueName);
  RegCloseKey(opened);
  return text;
}

std::string_view WithoutFinalBackslashes(std::string_view key) {
  while (!key.empty() && key.back() == '\\') {
    key.remove_suffix(1);
  }
  return key;
}

HKEY KeyOf(RegistryHive hive) { return hive == RegistryHive::CurrentUser ? HKEY_CURRENT_USER : HKEY_LOCAL_MACHINE; }

LSTATUS WriteView(HKEY hive, const std::wstring& key, const std::wstring& valueName, const std::wstring& text,
                  REGSAM view) {
  HKEY made = nullptr;
  LSTATUS status = RegCreateKeyExW(hive, key.c_str(), 0, nullptr, REG_OPTION_NON_VOLATILE, KEY_SET_VALUE | view,
                                   nullptr, &made, nullptr);
  if (status == ERROR_SUCCESS) {
    status = RegSetValueExW(made, valueName.c_str(), 0, REG_SZ, reinterpret_cast<const BYTE*>(text.c_str()),
                            static_cast<DWORD>((text.size() + 1) * sizeof(wchar_t)));
    RegCloseKey(made);
  }
  return status;
}

}  // namespace

std::optional<std::string> SystemRegistry::LocalMachineString(std::string_view key, std::string_view valueName) {
  const std::string ansiKey = ToAnsi(WithoutFinalBackslashes(key));
  const std::string ansiName = ToAnsi(valueName);
  std::optional<std::string> text = ReadView(HKEY_LOCAL_MACHINE, ansiKey, ansiName, 0);
  return text ? text : ReadView(HKEY_LOCAL_MACHINE, ansiKey, ansiName, KEY_WOW64_32KEY);
}

std::optional<std::string> SystemRegistry::Read(RegistryHive hive, std::string_view key, std::string_view valueName) {
  return ReadView(KeyOf(hive), ToAnsi(WithoutFinalBackslashes(key)), ToAnsi(valueName), 0);
}

void SystemRegistry::Write(RegistryHive hive, std::string_view key, std::string_view valueName, std::string_view text) {
  // The user's keys are the same in both views.
  for (const REGSAM view : {KEY_WOW64_64KEY, KEY_WOW64_32KEY}) {
    const LSTATUS status =
        WriteView(KeyOf(hive), Widen(WithoutFinalBackslashes(key)), Widen(valueName), Widen(text), view);
    if (status != ERROR_SUCCESS) {
      throw MakeFileError(RuntimeError::PathFileAccess, "write the registry key", key,
                          status == ERROR_ACCESS_DENIED ? "administrator rights are needed"
                                                        : "the system refuses it with " + std::to_string(status));
    }
  }
}

}  // namespace parvex::windows
