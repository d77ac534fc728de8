#include "recording/old_cases.h"

#include <algorithm>
#include <cstdint>
#include <string>
#include <vector>

#include "recording/case_layout.h"

namespace parvex::recording {
namespace {

// Cases by name, which begins with the time: the oldest first.
std::vector<HostSystem::Entry> CasesIn(HostSystem& system, const std::string& folder) {
  std::vector<HostSystem::Entry> cases = system.List(folder);
  std::erase_if(cases, [](const HostSystem::Entry& entry) {
    return !entry.name.ends_with(entry.isFolder ? kUnfinishedSuffix : kSuffix);
  });
  for (HostSystem::Entry& one : cases) {
    if (one.isFolder) {
      for (const HostSystem::Entry& member : system.List(folder + "/" + one.name)) {
        one.bytes += member.bytes;
      }
    }
  }
  std::sort(cases.begin(), cases.end(), [](const auto& a, const auto& b) { return a.name < b.name; });
  return cases;
}

// Whether a host writes to it. One that has just begun has no file yet that it could hold, so a folder of today without
// files is taken for such a one; and one that ends gives the archive free before the journal.
bool IsRunning(HostSystem& system, const std::string& path, std::string_view name) {
  constexpr std::size_t kDay = 8;  // of the time with which names begin
  for (const std::string_view member : {kFiles, kJournal}) {
    if (system.IsInUse(path + "/" + std::string(member))) {
      return true;
    }
  }
  return system.SizeOf(path + "/" + std::string(kFiles)) == 0 &&
         name.substr(0, kDay) == system.LocalTime().substr(0, kDay);
}

bool RemoveCase(HostSystem& system, const std::string& folder, const HostSystem::Entry& one) noexcept {
  try {
    const std::string path = folder + "/" + one.name;
    if (!one.isFolder) {
      system.Remove(path);
      return true;
    }
    if (IsRunning(system, path, one.name)) {
      return false;
    }
    system.RemoveFolder(path);
    return true;
  } catch (...) {
    return false;  // another program reads it, or has removed it
  }
}

}  // namespace

void RemoveOldCases(HostSystem& system, const Settings& settings) noexcept {
  try {
    const std::vector<HostSystem::Entry> cases = CasesIn(system, settings.folder);
    std::uint64_t count = cases.size();
    std::uint64_t bytes = 0;
    for (const HostSystem::Entry& one : cases) {
      bytes += one.bytes;
    }
    for (const HostSystem::Entry& one : cases) {
      if (&one == &cases.back() || (count <= settings.keep && bytes <= settings.megabytes * kMegabyte)) {
        return;
      }
      if (RemoveCase(system, settings.folder, one)) {
        --count;
        bytes -= one.bytes;
      }
    }
  } catch (...) {
    // The cases stay until the next call tries again.
  }
}

}  // namespace parvex::recording
