#include "legacy_standin/router/project_archive.h"

#include <algorithm>
#include <unordered_set>
#include <utility>

#include "formats/text/letter_case.h"
#include "formats/text/text.h"
#include "formats/zip/zip_reader.h"
#include "formats/zip/zip_writer.h"
#include "legacy_standin/router/router.h"
#include "protocol/command_document.h"

namespace parvex::standin {
namespace {

constexpr const char* kUnits = "units.json";

/// The file of that path; the list's end when there is none.
template <typename FileList>
auto Find(FileList& files, std::string_view path) {
  return std::find_if(files.begin(), files.end(), [&](const ProjectFile& file) { return IsSameName(file.path, path); });
}

std::vector<Unit> UnitsIn(const ProjectArchive& archive) {
  const auto units = Find(archive.files, kUnits);
  return units != archive.files.end() ? ParseUnits(units->bytes, units->path) : std::vector<Unit>();
}

std::string GroupOf(const Unit& unit) {
  const std::string group = FieldOf(unit.keys, "PDSG");
  return group.empty() ? std::string(kLegacyPdsg) : group;
}

std::vector<std::string> SplitAtCommas(std::string_view list) {
  std::vector<std::string> names;
  for (std::size_t begin = 0; begin <= list.size();) {
    const std::size_t end = std::min(list.find(',', begin), list.size());
    const std::string_view name = TrimBlanks(list.substr(begin, end - begin));
    if (!name.empty()) {
      names.emplace_back(name);
    }
    begin = end + 1;
  }
  return names;
}

/// The file names, folded, of the data archives of a unit and its accessories.
void AddDataOf(const Unit& unit, std::unordered_set<std::string>& names) {
  names.insert(FoldName(unit.stored.fileName));
  for (const Accessory& accessory : unit.accessories) {
    names.insert(FoldName(accessory.stored.fileName));
  }
}

}  // namespace

std::string PackProject(const ProjectArchive& archive) {
  ZipWriter zip;
  for (const ProjectFile& file : archive.files) {
    zip.Add(ReplaceAll(archive.projectName + "\\" + file.path, "\\", "/"), file.bytes, true);
  }
  return zip.Finish();
}

ProjectArchive ReadProjectArchive(const Application& application, const std::string& path) {
  ProjectArchive archive;
  for (PackedEntry& entry : Unpack(application.codePage, application.files.ReadAll(path), path, kUnpackedAsFiles)) {
    if (entry.isFolder) {
      continue;
    }
    const std::size_t split = std::min(entry.name.find('\\'), entry.name.size());
    const std::string project = entry.name.substr(0, split);
    if (split == entry.name.size() || (!archive.files.empty() && project != archive.projectName)) {
      RefuseRequest(path + " is no archive of one project");
    }
    archive.projectName = project;
    archive.files.push_back({entry.name.substr(split + 1), std::move(entry.bytes)});
  }
  if (Find(archive.files, "project.mdb") == archive.files.end()) {
    RefuseRequest(path + " is no archive of a project");
  }
  return archive;
}

std::vector<std::string> GroupsIn(const ProjectArchive& archive) {
  std::vector<std::string> groups = {std::string(kLegacyPdsg)};
  for (const Unit& unit : UnitsIn(archive)) {
    const std::string group = GroupOf(unit);
    if (std::find(groups.begin(), groups.end(), group) == groups.end()) {
      groups.push_back(group);
    }
  }
  return groups;
}

void KeepGroups(ProjectArchive& archive, std::string_view groups) {
  const std::vector<std::string> wanted = SplitAtCommas(groups);
  if (wanted.empty()) {
    RefuseRequest("dataList \"" + std::string(groups) + "\" names nothing");
  }
  const auto isWanted = [&](const std::string& group) {
    return std::any_of(wanted.begin(), wanted.end(), [&](const auto& name) { return name == "*" || name == group; });
  };
  std::vector<Unit> kept;
  std::unordered_set<std::string> leftOut;
  for (Unit& unit : UnitsIn(archive)) {
    if (isWanted(GroupOf(unit))) {
      kept.push_back(std::move(unit));
    } else {
      AddDataOf(unit, leftOut);
    }
  }
  std::erase_if(archive.files, [&](const ProjectFile& file) { return leftOut.contains(FoldName(file.path)); });
  if (const auto units = Find(archive.files, kUnits); units != archive.files.end()) {
    units->bytes = FormatUnits(kept);
  }
}

}  // namespace parvex::standin
