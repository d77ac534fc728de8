#include "legacy_env/install_paths.h"

#include "formats/text/text.h"
#include "legacy_env/installed_files.h"
#include "legacy_env/registry_value.h"
#include "legacy_env/thread_state.h"
#include "seams/automation_error.h"

namespace parvex {
namespace {

// The two spellings of the key and of the value name are deliberate: to the registry they are the same value, but each
// goes with its own answer for a failed read.
constexpr std::string_view kKey = "SOFTWARE\\Korvane\\KDQ47\\";
constexpr std::string_view kUnreadable = "error";
constexpr std::string_view kDesignFolder = "TQ5-VX";

std::string ReadKeptBinPathValue(const Platform& platform) {
  return ReadRegistryValue(platform, kKey, "binPath", kUnreadable);
}

std::string_view CutAtLastBackslash(std::string_view path, std::string_view binPath) {
  const std::size_t cut = path.rfind('\\');
  if (cut == std::string_view::npos) {
    throw MakeRuntimeError(RuntimeError::InvalidCall,
                           "BinPath \"" + std::string(binPath) + "\" has fewer than two folders above it");
  }
  return path.substr(0, cut);
}

std::string FolderOfDataRoot(const Platform& platform, std::string_view name) {
  return GetDataRoot(platform).append("\\").append(name);
}

}  // namespace

std::string GetBinPath(const Platform& platform) {
  std::string& kept = ThisThread().binPath;
  if (kept.empty()) {
    kept = ReadKeptBinPathValue(platform);
  }
  return kept;
}

std::string GetDataRoot(const Platform& platform) {
  std::string& kept = ThisThread().dataRoot;
  if (kept.empty()) {
    const std::string binPath = ReadKeptBinPathValue(platform);
    if (binPath != kUnreadable) {
      kept = CutAtLastBackslash(CutAtLastBackslash(binPath, binPath), binPath);
    }
  }
  return kept;
}

std::string GetHandOverFolder(const Platform& platform) { return FolderOfDataRoot(platform, kTemporaryFolder); }
std::string GetProjectsFolder(const Platform& platform) { return FolderOfDataRoot(platform, kProjectsFolder); }
std::string GetArchivesFolder(const Platform& platform) { return FolderOfDataRoot(platform, kArchivesFolder); }

bool ReadBinPath(const Platform& platform, std::string& binPath) {
  binPath = ReadRegistryValue(platform, kKey, kProgramFolderValue, "");
  return !binPath.empty();
}

std::string GetDesignRoot(const Platform& platform) {
  const std::string binPath = ReadRegistryValue(platform, kInstallationKey, kProgramFolderValue, "");
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
  return GetDesignRoot(platform) + "\\" + std::string(kDesignFolder) + "\\" + std::string(kTemporaryFolder) + "\\";
}

}  // namespace parvex
