#include "legacy_env/install_paths.h"

#include <cstddef>
#include <optional>

#include "formats/text/text.h"
#include "legacy_env/ui_settings.h"
#include "seams/automation_error.h"

namespace parvex {
namespace {

// The two spellings of the key and of the value name are deliberate: to the registry they are the same value, but each
// goes with its own answer for a failed read.
constexpr std::string_view kKey = "SOFTWARE\\Korvane\\KDQ47\\";
constexpr std::string_view kKeyOfDesignRoot = "SOFTWARE\\Korvane\\KDQ47";
constexpr std::string_view kUiKey = "SOFTWARE\\Korvane\\UI\\";
constexpr std::string_view kUnreadable = "error";
constexpr std::string_view kDesignFolder = "TQ5-VX";

// The legacy reader's buffer holds 255 bytes, the terminating zero among them; it gives up on longer values.
constexpr std::size_t kLongestValue = 254;

struct KeptPaths {
  std::string binPath;
  std::string dataRoot;
};
thread_local KeptPaths keptPaths;

std::string ReadKeptBinPathValue(const Platform& platform) {
  return ReadRegistryString(platform, kKey, "binPath", kUnreadable);
}

std::string_view CutAtLastBackslash(std::string_view path, std::string_view binPath) {
  const std::size_t cut = path.rfind('\\');
  if (cut == std::string_view::npos) {
    throw MakeRuntimeError(RuntimeError::InvalidCall,
                           "BinPath \"" + std::string(binPath) + "\" has fewer than two folders above it");
  }
  return path.substr(0, cut);
}

}  // namespace

std::string ReadRegistryString(const Platform& platform, std::string_view key, std::string_view valueName,
                               std::string_view fallback) {
  try {
    if (key == kUiKey) {
      return getUIValue(platform, valueName);
    }
    const std::optional<std::string> value = platform.registry->LocalMachineString(key, valueName);
    if (value && platform.codePage->ToAnsi(*value).size() <= kLongestValue) {
      return *value;
    }
    return std::string(fallback);
  } catch (const AutomationError&) {
    return {};  // deliberate: the legacy reader traps its errors before it has put anything into the result
  }
}

std::string GetBinPath(const Platform& platform) {
  if (keptPaths.binPath.empty()) {
    keptPaths.binPath = ReadKeptBinPathValue(platform);
  }
  return keptPaths.binPath;
}

std::string GetDataRoot(const Platform& platform) {
  if (keptPaths.dataRoot.empty()) {
    const std::string binPath = ReadKeptBinPathValue(platform);
    if (binPath != kUnreadable) {
      keptPaths.dataRoot = CutAtLastBackslash(CutAtLastBackslash(binPath, binPath), binPath);
    }
  }
  return keptPaths.dataRoot;
}

bool ReadBinPath(const Platform& platform, std::string& binPath) {
  binPath = ReadRegistryString(platform, kKey, "BinPath", "");
  return !binPath.empty();
}

std::string GetDesignRoot(const Platform& platform) {
  const std::string binPath = ReadRegistryString(platform, kKeyOfDesignRoot, "BinPath", "");
  if (LengthInUnits(binPath) <= 8) {
    return {};
  }
  const std::size_t position = binPath.find(kDesignFolder);
  if (position == std::string::npos || position == 0) {
    throw MakeRuntimeError(RuntimeError::InvalidCall,
                           "BinPath \"" + binPath + "\" has no folder above \"" + std::string(kDesignFolder) + "\"");
  }
  const std::string_view before = std::string_view(binPath).substr(0, position);
  return std::string(FirstUnits(before, LengthInUnits(before) - 1));
}

std::string GetDesignTempFolder(const Platform& platform) {
  return GetDesignRoot(platform) + "\\" + std::string(kDesignFolder) + "\\Temp\\";
}

void ForgetInstallPaths() { keptPaths = {}; }

}  // namespace parvex
