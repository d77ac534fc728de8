#include "adapters/windows/system_private_profile.h"

#include <windows.h>

#include <vector>

#include "adapters/windows/ansi_text.h"

namespace parvex::windows {
namespace {

class SystemProfileSection : public ProfileSection {
 public:
  SystemProfileSection(std::string_view section, std::string_view file)
      : section_(ToAnsi(section)), file_(ToAnsi(file)) {}

  std::string ReadString(std::string_view key, std::string_view fallback, std::size_t bufferSize) override {
    std::vector<char> buffer(bufferSize + 1, '\0');
    const DWORD length = GetPrivateProfileStringA(section_.c_str(), ToAnsi(key).c_str(), ToAnsi(fallback).c_str(),
                                                  buffer.data(), static_cast<DWORD>(bufferSize), file_.c_str());
    return FromAnsi({buffer.data(), length});
  }

  std::int32_t ReadInteger(std::string_view key, std::int32_t fallback) override {
    return static_cast<std::int32_t>(
        GetPrivateProfileIntA(section_.c_str(), ToAnsi(key).c_str(), fallback, file_.c_str()));
  }

  bool WriteString(std::string_view key, std::string_view value) override {
    return WritePrivateProfileStringA(section_.c_str(), ToAnsi(key).c_str(), ToAnsi(value).c_str(), file_.c_str()) != 0;
  }

 private:
  std::string section_;
  std::string file_;
};

}  // namespace

std::unique_ptr<ProfileSection> SystemPrivateProfile::Section(std::string_view section, std::string_view file) {
  return std::make_unique<SystemProfileSection>(section, file);
}

}  // namespace parvex::windows
