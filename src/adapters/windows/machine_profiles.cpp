#include "adapters/windows/machine_profiles.h"

#include <windows.h>

#include <string>

#include "adapters/windows/wide_text.h"

namespace parvex::windows {
namespace {

constexpr const wchar_t* kMapping = L"SOFTWARE\\Microsoft\\Windows NT\\CurrentVersion\\IniFileMapping\\";

constexpr std::size_t kMostNames = 64;

std::string WindowsFolder() {
  wchar_t folder[MAX_PATH] = L"";
  GetWindowsDirectoryW(folder, MAX_PATH);
  return Narrow(folder);
}

}  // namespace

MachineProfiles::MachineProfiles(Files& files, CodePage& codePage)
    : files_(files, versions_, codePage, WindowsFolder()) {}

std::unique_ptr<ProfileSection> MachineProfiles::Section(std::string_view section, std::string_view file) {
  if (file.empty() || IsMapped(std::string(file))) {
    return system_.Section(section, file);
  }
  return files_.Section(section, file);
}

std::shared_ptr<void> MachineProfiles::Hold(std::string_view file) {
  return file.empty() || IsMapped(std::string(file)) ? nullptr : files_.Hold(file);
}

bool MachineProfiles::IsMapped(const std::string& file) {
  const auto known = mapped_.find(file);
  if (known != mapped_.end()) {
    return known->second;
  }
  if (mapped_.size() == kMostNames) {
    mapped_.clear();
  }
  return mapped_[file] = IsMappedToTheRegistry(file);
}

bool IsMappedToTheRegistry(std::string_view file) {
  const std::string_view name = file.substr(file.find_last_of("\\/:") + 1);
  if (name.empty()) {
    return false;
  }
  HKEY key = nullptr;
  const bool isMapped = RegOpenKeyExW(HKEY_LOCAL_MACHINE, (kMapping + Widen(name)).c_str(), 0,
                                      KEY_QUERY_VALUE | KEY_WOW64_64KEY, &key) == ERROR_SUCCESS;
  if (isMapped) {
    RegCloseKey(key);
  }
  return isMapped;
}

}  // namespace parvex::windows
