#include "legacy_env/registry_strings.h"

#include "legacy_env/registry_value.h"
#include "legacy_env/ui_settings.h"
#include "seams/automation_error.h"

namespace parvex {
namespace {

constexpr std::string_view kUiKey = "SOFTWARE\\Korvane\\UI\\";

}  // namespace

std::string ReadRegistryString(const Platform& platform, std::string_view key, std::string_view valueName,
                               std::string_view fallback) {
  if (key != kUiKey) {
    return ReadRegistryValue(platform, key, valueName, fallback);
  }
  try {
    return getUIValue(platform, valueName);
  } catch (const AutomationError&) {
    return {};
  }
}

}  // namespace parvex
