#include "recording/case_members.h"

#include <algorithm>
#include <cstdint>
#include <string_view>
#include <utility>

#include "formats/text/letter_case.h"
#include "formats/text/windows_1252.h"
#include "formats/zip/zip_reader.h"
#include "recording/case_layout.h"
#include "seams/automation_error.h"

namespace parvex::recording {
namespace {

constexpr std::uint64_t kLargestFacts = 16u << 20;
constexpr std::uint64_t kLargestJournal = 256u << 20;
// An archive of ours is stored as it is. One that somebody packed again is somewhat smaller, and no bomb.
constexpr std::uint64_t kUnpackedAnyway = 64u << 20;
constexpr std::uint64_t kUnpackedOfEachByte = 8;

constexpr std::string_view kOwnMembers[] = {kFacts, kCommand, kReply, kJournal};

std::uint64_t MostOf(std::string_view member) {
  return member == kFacts ? kLargestFacts : member == kJournal ? kLargestJournal : kLargestCase;
}

void CheckSize(const std::string& path, const std::string& subject, std::uint64_t bytes, std::uint64_t most) {
  if (bytes > most) {
    RefuseCase(path, subject + " has " + std::to_string(bytes) + " bytes, more than are read");
  }
}

// A folder with the name of a member would stand in the member's way where the case is written out.
void CheckFolderName(const std::string& path, std::string_view name) {
  const std::string_view first = name.substr(0, name.find('/'));
  for (const std::string_view own : kOwnMembers) {
    if (IsSameName(first, own)) {
      RefuseCase(path, "its entry " + Quoted(name) + " makes a folder of " + std::string(own));
    }
  }
}

void Take(const std::string& path, std::string_view archive, CaseMembers& members) {
  posix::Windows1252 codePage;
  const std::uint64_t most = std::min(kLargestCase, kUnpackedAnyway + kUnpackedOfEachByte * archive.size());
  for (PackedEntry& entry : Unpack(codePage, archive, path, {.entry = most, .total = most, .what = "case"})) {
    std::replace(entry.name.begin(), entry.name.end(), '\\', '/');
    if (entry.isFolder || entry.name.find('/') != std::string::npos) {
      CheckFolderName(path, entry.name);
      members.files.push_back({std::move(entry.name), std::move(entry.bytes), entry.isFolder});
    } else {
      CheckSize(path, "its " + entry.name, entry.bytes.size(), MostOf(entry.name));
      members.own[entry.name] = std::move(entry.bytes);
    }
  }
}

void ReadFolder(HostSystem& system, const std::string& path, CaseMembers& members) {
  const std::vector<HostSystem::Entry> present = system.List(path);
  const auto take = [&](std::string_view name, auto use) {
    const auto entry = std::ranges::find(present, name, &HostSystem::Entry::name);
    if (entry == present.end()) {
      return;
    }
    if (!entry->isPlain || entry->isFolder) {
      RefuseCase(path, "its " + std::string(name) + " is a link, or no file");
    }
    CheckSize(path, "its " + std::string(name), entry->bytes, MostOf(name));
    use(system.ReadAll(path + "/" + std::string(name)));
  };
  take(kFiles, [&](std::string bytes) { Take(path, WithDirectory(bytes), members); });
  for (const std::string_view name : kOwnMembers) {
    take(name, [&](std::string bytes) { members.own[std::string(name)] = std::move(bytes); });
  }
}

bool IsCaseFolder(HostSystem& system, const std::string& path) {
  const std::vector<HostSystem::Entry> entries = system.List(path);
  return (system.IsFolder(path) && path.ends_with(kUnfinishedSuffix)) ||
         std::ranges::any_of(entries, [](const auto& entry) { return entry.name == kFiles || entry.name == kFacts; });
}

}  // namespace

CaseMembers ReadMembers(HostSystem& system, const std::string& path) {
  CaseMembers members;
  members.isFinished = !IsCaseFolder(system, path);
  if (members.isFinished) {
    CheckSize(path, "it", system.SizeOf(path), kLargestCase);
    Take(path, system.ReadAll(path), members);
  } else {
    ReadFolder(system, path, members);
  }
  return members;
}

void RefuseCase(const std::string& path, const std::string& reason) {
  throw MakeRuntimeError(RuntimeError::InvalidCall, FailureText("the case", path, "it is refused: " + reason));
}

}  // namespace parvex::recording
