#include "replay/machine_on_disk.h"

#include <utility>

#include "formats/jet/catalogue.h"
#include "formats/text/letter_case.h"
#include "replay/same_database.h"
#include "replay/same_text.h"

namespace parvex::replay {
namespace {

constexpr const char* kNone = "no such file";
constexpr const char* kNoFolder = "no such folder";
constexpr std::string_view kFoldedRegistry = "REGISTRY.REG";

// A place in the spelling in which each of its folders came first.
class Spelling {
 public:
  std::string Of(std::string_view place) {
    std::string spelled;
    std::string folded;
    while (!place.empty()) {
      const std::size_t end = std::min(place.find('/'), place.size());
      folded += "/" + FoldName(place.substr(0, end));
      spelled = known_.try_emplace(folded, spelled + "/" + std::string(place.substr(0, end))).first->second;
      place.remove_prefix(std::min(end + 1, place.size()));
    }
    return spelled;
  }

 private:
  std::map<std::string, std::string> known_;
};

// The path on the machine, for people.
std::string PathOf(std::string_view place) {
  constexpr std::string_view kDrive = "drive_";
  std::string path;
  if (place.starts_with(kDrive) && place.size() > kDrive.size()) {
    path = {static_cast<char>(place[kDrive.size()] & ~0x20), ':'};
    place.remove_prefix(kDrive.size() + 1);
  } else if (place.starts_with("unc/")) {
    path = "\\";
    place.remove_prefix(3);
  }
  for (const char c : place) {
    path.push_back(c == '/' ? '\\' : c);
  }
  return path;
}

struct Found {
  std::map<std::string, std::pair<std::string, std::string>> files;  // place and path by folded place
  std::map<std::string, std::string> folders;
};

void Walk(HostSystem& system, const std::string& path, const std::string& place, Found& found) {
  for (const HostSystem::Entry& entry : system.List(path)) {
    const std::string inside = place.empty() ? entry.name : place + "/" + entry.name;
    if (entry.isFolder) {
      found.folders[FoldName(inside)] = inside;
      Walk(system, path + "/" + entry.name, inside, found);
    } else if (FoldName(inside) != kFoldedRegistry) {
      found.files[FoldName(inside)] = {inside, path + "/" + entry.name};
    }
  }
}

std::string SizeOf(std::string_view bytes) { return std::to_string(bytes.size()) + " bytes"; }

bool LooksLikeText(std::string_view bytes) { return bytes.find('\0') == std::string_view::npos; }

bool SameContent(std::string_view expected, std::string_view actual, bool asXml) {
  if (expected == actual) {
    return true;
  }
  if (jet::LooksLikeDatabase(expected) && jet::LooksLikeDatabase(actual)) {
    return SameDatabase(expected, actual);
  }
  return asXml && SameDocument(expected, actual);
}

Difference ContentDifference(const std::string& place, std::string_view expected, std::string_view actual) {
  const bool isText = LooksLikeText(expected) && LooksLikeText(actual);
  return {0, PathOf(place), isText ? std::string(expected) : SizeOf(expected),
          isText ? std::string(actual) : SizeOf(actual) + ", which differ"};
}

}  // namespace

void LayOut(HostSystem& system, const std::string& folder, const KeptFiles& files) {
  Spelling spelling;
  for (const auto& [folded, place] : files.folders) {
    system.CreateFolders(folder + spelling.Of(place));
  }
  for (const auto& [folded, file] : files.files) {
    const std::string path = folder + spelling.Of(file.place);
    system.CreateFolders(path.substr(0, path.rfind('/')));
    system.WriteAll(path, file.bytes.value_or(""));
  }
}

std::vector<Difference> CompareFiles(HostSystem& system, const std::string& folder, const KeptFiles& expected,
                                     bool asXml) {
  Found found;
  Walk(system, folder, "", found);
  std::vector<Difference> differences;
  for (const auto& [folded, file] : expected.files) {
    const auto there = found.files.find(folded);
    if (folded == kFoldedRegistry) {
      continue;
    }
    if (there == found.files.end()) {
      differences.push_back({0, PathOf(file.place), file.bytes ? SizeOf(*file.bytes) : "a file", kNone});
    } else if (file.bytes) {
      const std::string actual = system.ReadAll(there->second.second);
      if (!SameContent(*file.bytes, actual, asXml)) {
        differences.push_back(ContentDifference(file.place, *file.bytes, actual));
      }
    }
  }
  for (const auto& [folded, file] : found.files) {
    if (!expected.files.contains(folded)) {
      differences.push_back({0, PathOf(file.first), kNone, SizeOf(system.ReadAll(file.second))});
    }
  }
  for (const auto& [folded, place] : expected.folders) {
    if (!found.folders.contains(folded)) {
      differences.push_back({0, PathOf(place), "a folder", kNoFolder});
    }
  }
  for (const auto& [folded, place] : found.folders) {
    if (!expected.folders.contains(folded)) {
      differences.push_back({0, PathOf(place), kNoFolder, "a folder"});
    }
  }
  return differences;
}

}  // namespace parvex::replay
