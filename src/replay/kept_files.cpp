#include "replay/kept_files.h"

#include <algorithm>
#include <map>
#include <vector>

#include "formats/text/letter_case.h"
#include "formats/text/machine_folder_places.h"
#include "recording/case_layout.h"
#include "recording/registry_text.h"
#include "replay/json_members.h"

namespace parvex::replay {
namespace {

constexpr std::string_view kRegistry = "registry.reg";

void AddFolders(KeptFiles& kept, std::string_view place) {
  for (std::size_t end = place.find('/'); end != std::string_view::npos; end = place.find('/', end + 1)) {
    const std::string folder(place.substr(0, end));
    kept.folders.emplace(FoldName(folder), folder);
  }
}

void AddFolder(KeptFiles& kept, const std::string& place) {
  AddFolders(kept, place);
  kept.folders.emplace(FoldName(place), place);
}

void AddFile(KeptFiles& kept, const std::string& place, std::optional<std::string_view> bytes) {
  AddFolders(kept, place);
  kept.files.insert_or_assign(FoldName(place), KeptFiles::File{place, bytes});
}

void AddName(KeptFiles& kept, std::string_view path) {
  if (const auto place = PlaceInMachineFolder(path); place && !kept.files.contains(FoldName(*place))) {
    AddFile(kept, *place, std::string_view());
  }
}

// What the call was told that exists, as placeholders, which a finished record has itself. What it made itself did not
// exist before.
void AddNames(KeptFiles& kept, const recording::RecordedCase& recorded) {
  std::map<std::uint64_t, std::string> listed;
  for (const Json& line : recorded.steps) {
    const std::string op = TextAt(line, "op");
    const std::string path = TextAt(line, "path");
    if (op == "replace" || op == "createNew") {
      return;
    }
    if (op == "isFile" && FlagAt(line, "result")) {
      AddName(kept, path);
    } else if (op == "listFiles" && TextAt(line, "at") == "before") {
      listed[CountAt(line, "n")] = path.substr(0, path.find_last_of("\\/") + 1);
    } else if (const auto folder = listed.find(CountAt(line, "n")); folder != listed.end()) {
      for (const Json& name : Member(line, "result")) {
        AddName(kept, folder->second + (name.is_string() ? name.get<std::string>() : std::string()));
      }
    }
  }
}

std::string_view FolderOf(std::string_view place) {
  const std::size_t end = place.rfind('/');
  return place.substr(0, end == std::string_view::npos ? 0 : end);
}

// A file was written: its folder was there, unless the call had made it.
void AddFoldersWrittenInto(KeptFiles& kept, const recording::RecordedCase& recorded) {
  std::map<std::uint64_t, std::string> begun;
  std::set<std::string> own;
  for (const Json& line : recorded.steps) {
    const std::string op = TextAt(line, "op");
    if (op == "createFolder" || op == "replace" || op == "createNew" || op == "write") {
      begun[CountAt(line, "n")] = PlaceInMachineFolder(TextAt(line, "path")).value_or("");
      if (op == "createFolder") {
        own.insert(FoldName(begun[CountAt(line, "n")]));
      }
      continue;
    }
    const auto place = begun.find(CountAt(line, "n"));
    if (place == begun.end() || line.contains("error") || Member(line, "result") == false) {
      continue;
    }
    std::string_view folder = FolderOf(place->second);
    const std::string folded = FoldName(folder);
    const auto isOwn = [&](const std::string& one) { return folded == one || folded.starts_with(one + "/"); };
    if (!folder.empty() && std::none_of(own.begin(), own.end(), isOwn) && !own.contains(FoldName(place->second))) {
      AddFolder(kept, std::string(folder));
    }
  }
}

std::string RegistryOf(const recording::RecordedCase& recorded) {
  std::map<std::uint64_t, recording::RegistryValue> asked;
  std::map<std::pair<std::string, std::string>, recording::RegistryValue> values;
  for (const Json& line : recorded.steps) {
    if (TextAt(line, "kind") == "registry") {
      asked[CountAt(line, "n")] = {TextAt(line, "key"), TextAt(line, "value"), {}};
    } else if (const auto value = asked.find(CountAt(line, "n"));
               value != asked.end() && Member(line, "result").is_string()) {
      value->second.text = TextAt(line, "result");
      values.try_emplace({FoldName(value->second.key), FoldName(value->second.name)}, value->second);
    }
  }
  std::vector<recording::RegistryValue> sorted;
  for (const auto& [folded, value] : values) {
    sorted.push_back(value);
  }
  return recording::RegistryBytes(sorted);
}

void RemoveBelow(KeptFiles& kept, const std::string& folded) {
  const std::string inside = folded + "/";
  std::erase_if(kept.files, [&](const auto& file) { return file.first.starts_with(inside); });
  std::erase_if(kept.folders, [&](const auto& one) { return one.first == folded || one.first.starts_with(inside); });
}

void Leave(KeptFiles& kept, const Members& members, const Json& change) {
  const auto place = PlaceInMachineFolder(TextAt(change, "path"));
  if (!place) {
    return;
  }
  const Json& stored = Member(change, "stored");
  if (stored.is_string()) {
    const auto member = members.find(stored.get_ref<const std::string&>());
    AddFile(kept, *place, member == members.end() ? std::nullopt : std::optional(member->second));
  } else {
    kept.files.erase(FoldName(*place));
  }
}

// The changes of files and folders that the record says came back without an error.
void Apply(KeptFiles& kept, const Members& members, const Json& line, const Json& answer) {
  const std::string op = TextAt(line, "op");
  if (TextAt(line, "kind") == "process") {
    for (const Json& change : Member(line, "left")) {
      Leave(kept, members, change);
    }
    return;
  }
  if (op == "left" || op == "changed" || op == "gone") {
    Leave(kept, members, line);
    return;
  }
  const auto place = PlaceInMachineFolder(TextAt(line, "path"));
  if (!place) {
    return;
  }
  if (op == "remove") {
    kept.files.erase(FoldName(*place));
  } else if (op == "removeFolder") {
    RemoveBelow(kept, FoldName(*place));
  } else if (op == "createFolder") {
    AddFolder(kept, *place);
  } else if (op == "replace" || op == "createNew" || op == "update" || (op == "write" && FlagAt(answer, "result"))) {
    AddFile(kept, *place, std::nullopt);
  }
}

}  // namespace

KeptFiles FilesBefore(const recording::RecordedCase& recorded, std::string& made) {
  KeptFiles kept;
  bool hasRegistry = false;
  for (const recording::KeptFile& file : recorded.files) {
    if (!file.name.starts_with(recording::kMachine)) {
      continue;
    }
    std::string place = file.name.substr(recording::kMachine.size());
    hasRegistry = hasRegistry || place == kRegistry;
    if (file.isFolder) {
      place.erase(place.find_last_not_of('/') + 1);
      if (!place.empty()) {
        AddFolder(kept, place);
      }
    } else {
      AddFile(kept, place, file.bytes);
    }
  }
  if (!hasRegistry) {
    made = RegistryOf(recorded);
    AddFile(kept, std::string(kRegistry), made);
  }
  AddFoldersWrittenInto(kept, recorded);
  if (TextAt(recorded.facts, "outcome") == "unfinished") {
    AddNames(kept, recorded);
  }
  return kept;
}

KeptFiles FilesAfter(const recording::RecordedCase& recorded, const Members& members, KeptFiles before) {
  KeptFiles kept = std::move(before);
  std::map<std::uint64_t, const Json*> begun;
  for (const Json& line : recorded.steps) {
    if (TextAt(line, "at") == "before") {
      begun[CountAt(line, "n")] = &line;
    } else if (TextAt(line, "at") == "once") {
      Apply(kept, members, line, line);
    } else if (const auto before = begun.find(CountAt(line, "n")); before != begun.end() && !line.contains("error")) {
      Apply(kept, members, *before->second, line);
    }
  }
  return kept;
}

Members MembersOf(const recording::RecordedCase& recorded) {
  Members members;
  for (const recording::KeptFile& file : recorded.files) {
    members.emplace(file.name, file.bytes);
  }
  return members;
}

}  // namespace parvex::replay
