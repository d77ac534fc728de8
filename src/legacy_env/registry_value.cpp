#include "legacy_env/registry_value.h"

#include <cstddef>
#include <optional>

#include "seams/automation_error.h"

namespace parvex {
namespace {

// The legacy reader's buffer holds 255 bytes, the terminating zero among them; it gives up on longer values.
constexpr std::size_t kLongestValue = 254;

}  // namespace

std::string ReadRegistryValue(const Platform& platform, std::string_view key, std::string_view valueName,
                              std::string_view fallback) {
  try {
    const std::optional<std::string> value = platform.registry->LocalMachineString(key, valueName);
    const bool fits = value && platform.codePage->ToAnsi(*value).size() <= kLongestValue;
    return fits ? *value : std::string(fallback);
  } catch (const AutomationError&) {
    return {};
  }
}

}  // namespace parvex
