#include "recording/recording_settings.h"

#include <charconv>
#include <string_view>

namespace parvex::recording {
namespace {

constexpr RegistryHive kHives[] = {RegistryHive::CurrentUser, RegistryHive::LocalMachine};

std::string PlaceOf(RegistryHive hive) {
  return (hive == RegistryHive::CurrentUser ? "HKEY_CURRENT_USER\\" : "HKEY_LOCAL_MACHINE\\") + std::string(kKey);
}

std::optional<std::uint64_t> NumberIn(const std::string& text) {
  std::uint64_t number = 0;
  const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), number);
  return error == std::errc() && end == text.data() + text.size() && !text.empty() ? std::optional(number)
                                                                                   : std::nullopt;
}

std::optional<std::uint64_t> NumberOf(OwnSettings* settings, std::string_view name) {
  for (const RegistryHive hive : kHives) {
    const std::optional<std::string> text = settings == nullptr ? std::nullopt : settings->Read(hive, kKey, name);
    if (const std::optional<std::uint64_t> number = text ? NumberIn(*text) : std::nullopt) {
      return number;
    }
  }
  return std::nullopt;
}

// The folder and who named it; empty where nobody does.
Settings FolderOf(HostSystem& system, OwnSettings* settings, const std::string& asked) {
  if (!asked.empty()) {
    return {.folder = asked, .place = "--record"};
  }
  if (const std::optional<std::string> named = system.Variable(kVariable)) {
    return {.folder = *named, .place = kVariable};
  }
  if (settings != nullptr) {
    for (const RegistryHive hive : kHives) {
      if (const std::optional<std::string> named = settings->Read(hive, kKey, kFolderValue)) {
        return {.folder = *named, .place = PlaceOf(hive)};
      }
    }
  }
  return {};
}

}  // namespace

std::optional<Settings> SettingsInForce(HostSystem& system, OwnSettings* settings, const std::string& asked) {
  Settings found = FolderOf(system, settings, asked);
  if (found.folder.empty()) {
    return std::nullopt;
  }
  found.keep = NumberOf(settings, kKeepValue).value_or(found.keep);
  found.megabytes = NumberOf(settings, kMegabytesValue).value_or(found.megabytes);
  found.onlyFailures = NumberOf(settings, kOnlyFailuresValue).value_or(0) != 0;
  return found;
}

void SaveFolder(OwnSettings& settings, const std::string& folder) {
  settings.Write(RegistryHive::CurrentUser, kKey, kFolderValue, folder);
}

}  // namespace parvex::recording
