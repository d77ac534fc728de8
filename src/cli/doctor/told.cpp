#include "cli/doctor/told.h"

#include <algorithm>
#include <cstdio>
#include <utility>

#include "formats/text/text.h"
#include "legacy_env/installed_files.h"

namespace parvex::cli {
namespace {

constexpr std::string_view kLeftOut = "...";

// Names that say nothing about anybody.
constexpr std::string_view kOpenNames[] = {
    // of the legacy application
    "Korvane", "TQ5-VX", "Bin", "Reports", kTemporaryFolder, kProjectsFolder, kArchivesFolder, kProjectDatabase,
    kWorkflowProgram, kUiKeysFile, kOptionsFile, kToolsFile, kTagUpdateInfoFile, kCustomReportsFile,
    // of this system
    "Parvex", "Recordings", "recordings", "libexec",
    // of the platforms
    "Windows", "System32", "SysWOW64", "Program Files", "Program Files (x86)", "ProgramData", "Common Files",
    "Microsoft Shared", "AppData", "Local", "Roaming", "LocalLow", "home", "root", "tmp", "usr", "opt", "var", "srv",
    "mnt", "local", ".local", "state", "share", "lib", "Users", "Public"};

bool IsDrive(std::string_view name) { return name.size() == 2 && name[1] == ':'; }

bool IsProgram(std::string_view name) {
  return name.size() > 4 && std::ranges::any_of(std::initializer_list<std::string_view>{".exe", ".dll", ".ocx"},
                                                [&](std::string_view end) {
                                                  return EqualIgnoringCase(name.substr(name.size() - 4), end);
                                                });
}

bool IsOpen(std::string_view name, bool isLast) {
  return name.empty() || IsDrive(name) || (isLast && IsProgram(name)) ||
         std::ranges::any_of(kOpenNames, [&](std::string_view open) { return EqualIgnoringCase(name, open); });
}

bool IsBelow(std::string_view path, const std::string& folder) {
  return path.size() >= folder.size() && EqualIgnoringCase(path.substr(0, folder.size()), folder) &&
         (path.size() == folder.size() || path[folder.size()] == '/' || path[folder.size()] == '\\');
}

}  // namespace

std::string SharedPath(std::string_view path, const std::vector<MachineLook::PrivateFolder>& folders) {
  std::string shared;
  for (const MachineLook::PrivateFolder& folder : folders) {
    if (IsBelow(path, folder.path)) {
      shared = folder.name;
      path.remove_prefix(folder.path.size());
      break;
    }
  }
  for (;;) {
    const std::size_t end = path.find_first_of("\\/");
    const std::string_view name = path.substr(0, end);
    shared += IsOpen(name, end == std::string_view::npos) ? name : kLeftOut;
    if (end == std::string_view::npos) {
      return shared;
    }
    shared += path[end];
    path.remove_prefix(end + 1);
  }
}

Told Told::Foreign(std::string text, std::string shared) {
  Told told(Kind::Foreign, std::move(text));
  told.pieces_.front().shared = std::move(shared);
  return told;
}

std::string Told::Full() const {
  std::string text;
  for (const Piece& piece : pieces_) {
    text += piece.text;
  }
  return text;
}

std::string Told::Shared(const std::vector<MachineLook::PrivateFolder>& folders) const {
  std::string text;
  for (const Piece& piece : pieces_) {
    switch (piece.kind) {
      case Kind::Words:
        text += piece.text;
        break;
      case Kind::Path:
        text += SharedPath(piece.text, folders);
        break;
      case Kind::Foreign:
        text += piece.shared;
    }
  }
  return text;
}

Told operator+(Told left, const Told& right) {
  left.pieces_.insert(left.pieces_.end(), right.pieces_.begin(), right.pieces_.end());
  return left;
}

Told ToldOf(const AutomationError& error) {
  char number[16];
  const bool isOfRuntime = (error.Number() & 0xFFFF0000u) == 0x800A0000u;
  std::snprintf(number, sizeof number, isOfRuntime ? "%u" : "0x%08X",
                isOfRuntime ? error.RuntimeNumber() : error.Number());
  return Told::Foreign(error.Description(), std::string("error ") + number);
}

}  // namespace parvex::cli
