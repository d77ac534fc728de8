#include "legacy_env/ini_target.h"

#include <memory>
#include <optional>

#include "formats/text/text.h"
#include "legacy_env/thread_state.h"

namespace parvex {
namespace {

// The legacy reader's buffer, its terminating zero included.
constexpr std::size_t kBufferSize = 255;

// The target's section as the file is now; null, with the box shown, when no target was ever set.
std::unique_ptr<ProfileSection> OpenTarget(const Platform& platform) {
  const std::optional<ThreadState::IniTarget>& target = ThisThread().iniTarget;
  if (!target) {
    platform.messageBoxes->Show("[Section] and FileName Not Registered in Private.Ini!", "IniFile Logic Error",
                                MessageBoxes::Icon::Stop);
    return nullptr;
  }
  return platform.privateProfile->Section(target->section, target->fileName);
}

}  // namespace

void SetIniTarget(const Platform&, std::string_view section, std::string_view fileName) {
  ThisThread().iniTarget = {std::string(TrimBlanks(section)), std::string(TrimBlanks(fileName))};
}

std::string ReadIniString(const Platform& platform, std::string_view key, std::string_view fallback) {
  const auto section = OpenTarget(platform);
  return section ? section->ReadString(key, fallback, kBufferSize) : std::string();
}

std::int32_t ReadIniInt(const Platform& platform, std::string_view key, std::int32_t fallback) {
  const auto section = OpenTarget(platform);
  return section ? section->ReadInteger(key, fallback) : 0;
}

std::int32_t WriteIniString(const Platform& platform, std::string_view key, std::string_view value) {
  const auto section = OpenTarget(platform);
  return section && section->WriteString(key, value) ? 1 : 0;
}

}  // namespace parvex
