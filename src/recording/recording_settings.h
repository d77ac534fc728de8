#pragma once

#include <cstdint>
#include <optional>
#include <string>

#include "seams/host_system.h"
#include "seams/own_settings.h"

namespace parvex::recording {

/// The key below a hive, and its values.
inline constexpr std::string_view kKey = "SOFTWARE\\Parvex\\Recording";
inline constexpr std::string_view kFolderValue = "Folder";
inline constexpr std::string_view kKeepValue = "Keep";
inline constexpr std::string_view kMegabytesValue = "Megabytes";
inline constexpr std::string_view kOnlyFailuresValue = "OnlyFailures";
inline constexpr const char* kVariable = "PARVEX_RECORD";

/// What is recorded, and how much of it is kept.
struct Settings {
  std::string folder;             ///< where cases are kept, a path of the host system
  std::uint64_t keep = 50;        ///< cases; older ones go
  std::uint64_t megabytes = 200;  ///< of all cases together, and of one
  bool onlyFailures = false;      ///< calls that were answered are not kept
  std::string place = {};         ///< who said so: the variable's name, a key, or the program's option
};

/// The settings in force; nothing when nothing is recorded. The first that names a folder says where: `asked` (the
/// program's own option, empty for none), the variable PARVEX_RECORD, the current user's key, the machine's. An empty
/// Folder of the user turns the machine's off. The numbers come from the keys in the same order, whoever named the
/// folder; what is no number is passed over.
std::optional<Settings> SettingsInForce(HostSystem& system, OwnSettings* settings, const std::string& asked = {});

/// Turns recording on or, with an empty folder, off for the current user. An AutomationError when the registry refuses.
void SaveFolder(OwnSettings& settings, const std::string& folder);

}  // namespace parvex::recording
