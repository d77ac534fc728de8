#include "tests/com/registry_snapshot.h"

#include <windows.h>

#include <vector>

#include "adapters/windows/wide_text.h"

namespace parvex::test {
namespace {

void AddValues(HKEY key, const std::wstring& path, RegistrySnapshot& snapshot) {
  std::vector<wchar_t> name(16384);
  for (DWORD i = 0;; ++i) {
    DWORD nameSize = static_cast<DWORD>(name.size());
    DWORD size = 0;
    DWORD type = 0;
    if (RegEnumValueW(key, i, name.data(), &nameSize, nullptr, &type, nullptr, &size) != ERROR_SUCCESS) {
      return;
    }
    std::string content(size, '\0');
    nameSize = static_cast<DWORD>(name.size());
    RegEnumValueW(key, i, name.data(), &nameSize, nullptr, nullptr, reinterpret_cast<BYTE*>(content.data()), &size);
    snapshot[path + L"\\@" + std::wstring(name.data(), nameSize)] = std::to_string(type) + ":" + content;
  }
}

void AddKey(HKEY parent, const std::wstring& name, const std::wstring& path, RegistrySnapshot& snapshot) {
  HKEY key = nullptr;
  snapshot[path] = "key";
  if (RegOpenKeyExW(parent, name.c_str(), REG_OPTION_OPEN_LINK, KEY_READ, &key) != ERROR_SUCCESS) {
    return;
  }
  AddValues(key, path, snapshot);
  std::vector<wchar_t> child(256);
  for (DWORD i = 0;; ++i) {
    DWORD size = static_cast<DWORD>(child.size());
    if (RegEnumKeyExW(key, i, child.data(), &size, nullptr, nullptr, nullptr, nullptr) != ERROR_SUCCESS) {
      break;
    }
    const std::wstring childName(child.data(), size);
    AddKey(key, childName, path + L"\\" + childName, snapshot);
  }
  RegCloseKey(key);
}

}  // namespace

RegistrySnapshot SnapshotOfClasses() {
  RegistrySnapshot snapshot;
  AddKey(HKEY_LOCAL_MACHINE, L"Software\\Classes", L"HKLM", snapshot);
  AddKey(HKEY_CURRENT_USER, L"Software\\Classes", L"HKCU", snapshot);
  return snapshot;
}

std::string Difference(const RegistrySnapshot& before, const RegistrySnapshot& after) {
  std::string lines;
  for (const auto& [path, content] : before) {
    const auto found = after.find(path);
    if (found == after.end()) {
      lines += "gone: " + windows::Narrow(path) + "\n";
    } else if (found->second != content) {
      lines += "changed: " + windows::Narrow(path) + "\n";
    }
  }
  for (const auto& [path, content] : after) {
    if (!before.contains(path)) {
      lines += "new: " + windows::Narrow(path) + "\n";
    }
  }
  return lines;
}

}  // namespace parvex::test
