#include "legacy_standin/projects/project_store.h"

#include <algorithm>
#include <array>
#include <cstdint>
#include <memory>
#include <utility>

#include "formats/jet/writer.h"
#include "formats/text/file_names.h"
#include "formats/text/letter_case.h"
#include "formats/text/new_file_names.h"
#include "formats/text/text.h"
#include "formats/zip/entry_names.h"
#include "formats/zip/zip_reader.h"
#include "formats/zip/zip_writer.h"
#include "legacy_standin/installation/json_members.h"
#include "seams/automation_error.h"
#include "seams/file_parts.h"

namespace parvex::standin {
namespace {

constexpr const char* kDatabase = "project.mdb";
constexpr const char* kUnits = "units.json";
constexpr const char* kProperties = "properties.json";

// A change of several files is first written down whole, in a file of the project's folder. Who finds that file, after
// a substitute was killed, brings the change to its end: kAdditions holds files beside which others stay, kContent all
// of the project's. A project that is being made is marked by kUnfinished, one that is being removed by kRemoved; it is
// none while it has no database.
constexpr const char* kAdditions = "~change.zip";
constexpr const char* kContent = "~content.zip";
constexpr const char* kUnfinished = "~unfinished";
constexpr const char* kRemoved = "~removed";

JetTable ConfigTable(const std::vector<ConfigRow>& config) {
  JetTable table = {"Config", {{.name = "sPdsg", .size = 10}, {.name = "sKey", .size = 50}, {.name = "sValue"}}, {}};
  for (const ConfigRow& row : config) {
    table.rows.push_back({row.pdsg, row.key, row.value});
  }
  return table;
}

JetTable TagIndexTable(const std::vector<Unit>& units) {
  JetTable table = {"TagIndex",
                    {{.name = "lTagId", .type = JetColumn::Type::Long},
                     {.name = "sAPP", .size = 10},
                     {.name = "sAppVer", .size = 10},
                     {.name = "sTagName"}},
                    {}};
  for (const Unit& unit : units) {
    const std::string pdsg = FieldOf(unit.keys, "PDSG");
    table.rows.push_back({std::to_string(unit.tagId), std::string(FirstUnits(pdsg, 3)), std::string(LastUnits(pdsg, 2)),
                          FieldOf(unit.keys, "MarkFor")});
  }
  return table;
}

std::vector<ConfigRow> ReadConfig(ProjectDatabases& databases, const std::string& path) {
  std::vector<ConfigRow> config;
  const auto database = databases.Open(path);
  for (const auto rows = database->OpenRecordSet("SELECT * FROM Config"); !rows->AtEnd(); rows->MoveNext()) {
    config.push_back({rows->Column("sPdsg"), rows->Column("sKey"), rows->Column("sValue")});
  }
  return config;
}

std::string FormatProperties(const Fields& properties) {
  Json object = Json::object();
  for (const auto& [key, value] : properties) {
    object[key] = value;
  }
  return object.dump(2) + "\n";
}

bool IsMark(std::string_view path) {
  return EqualIgnoringCase(path, kAdditions) || EqualIgnoringCase(path, kContent) ||
         EqualIgnoringCase(path, kUnfinished) || EqualIgnoringCase(path, kRemoved);
}

// One byte more than is parsed at most, so that a longer file is refused.
std::string ReadJsonFile(Files& files, const std::string& path) {
  return ReadPart(files, path, 0, kLongestJsonFile + 1);
}

void AddFiles(Files& files, const std::string& folder, const std::string& below, std::vector<ProjectFile>& found) {
  for (const std::string& name : files.ListFiles(folder + "\\" + below)) {
    if (below.empty() && IsMark(name)) {
      continue;
    }
    found.push_back({below + name, files.ReadAll(folder + "\\" + below + name)});
  }
  for (const std::string& name : files.ListFolders(folder + "\\" + below)) {
    AddFiles(files, folder, below + name + "\\", found);
  }
}

/// Whether Windows may know another folder by this name: its second, short one ("RIVERS~1").
bool MayBeShortName(std::string_view name) {
  const std::size_t tilde = name.find('~');
  return tilde != std::string_view::npos && tilde + 1 < name.size() && name[tilde + 1] >= '0' && name[tilde + 1] <= '9';
}

/// Why a project cannot have this name, to be read behind the name; nothing when it can.
std::optional<std::string> ProblemOfProjectName(std::string_view name) {
  if (std::optional<std::string> problem = ProblemOfPackedName(name)) {
    return problem;
  }
  if (name.find_first_of("\\/") != std::string_view::npos) {
    return "has a separator of folders in its name";
  }
  if (name != WithoutTrailingDotsAndBlanks(name)) {
    return "has a name that ends with a dot or a blank";
  }
  if (IsDeviceName(name)) {
    return "has the name of a device";
  }
  return MayBeShortName(name) ? std::optional("has a name that may be the short name of another one") : std::nullopt;
}

/// The files of a change in one file, and back.
std::string Packed(const std::vector<ProjectFile>& files) {
  ZipWriter archive;
  for (const ProjectFile& file : files) {
    archive.Add(ReplaceAll(file.path, "\\", "/"), file.bytes, false);
  }
  return archive.Finish();
}

std::vector<ProjectFile> Unpacked(const Application& application, const std::string& path) {
  constexpr std::uint64_t kMost = std::uint64_t{1} << 32;
  std::vector<ProjectFile> files;
  for (PackedEntry& entry :
       Unpack(application.codePage, application.files.ReadAll(path), path, {kMost, kMost, "change of a project"})) {
    files.push_back({std::move(entry.name), std::move(entry.bytes)});
  }
  return files;
}

}  // namespace

std::string MakeProjectDatabase(const std::vector<ConfigRow>& config, const std::vector<Unit>& units) {
  const std::array tables = {ConfigTable(config), TagIndexTable(units)};
  return MakeJetDatabase(tables);
}

std::vector<std::string> ProjectStore::Names() const {
  const std::string projects = application_.Root() + "\\Projects";
  std::vector<std::string> names = files_.ListFolders(projects);
  std::erase_if(names, [&](const std::string& name) { return !IsProject(projects + "\\" + name); });
  return names;
}

bool ProjectStore::Exists(std::string_view name) const {
  return !ProblemOfProjectName(name) && IsProject(PlaceFor(name));
}

bool ProjectStore::IsProject(const std::string& folder) const {
  if (files_.IsFile(folder + "\\" + kDatabase)) {
    return true;
  }
  if (files_.IsFile(folder + "\\" + kRemoved)) {
    try {
      RemoveMarked(folder);
    } catch (const AutomationError&) {
      // Another one is at it, or it cannot go yet; whoever asks next tries again.
    }
  }
  return false;
}

std::string ProjectStore::NameOf(std::string_view name) const {
  if (!Exists(name)) {
    throw MakeRuntimeError(RuntimeError::PathNotFound, "there is no project \"" + std::string(name) + "\"");
  }
  for (const std::string& spelled : files_.ListFolders(application_.Root() + "\\Projects")) {
    if (IsSameName(spelled, name)) {
      return spelled;
    }
  }
  return std::string(name);
}

std::string ProjectStore::Folder(std::string_view name) const {
  std::string folder = PlaceFor(NameOf(name));
  FinishChanges(folder);
  return folder;
}

std::string ProjectStore::PlaceFor(std::string_view name) const {
  if (const std::optional<std::string> problem = ProblemOfProjectName(name)) {
    throw MakeRuntimeError(RuntimeError::InvalidCall, "a project \"" + std::string(name) + "\" " + *problem);
  }
  return application_.Root() + "\\Projects\\" + std::string(name);
}

void ProjectStore::Create(std::string_view name, const Fields& properties) const {
  Make(name, {{kDatabase, MakeProjectDatabase({}, {})},
              {kUnits, FormatUnits({})},
              {kProperties, FormatProperties(properties)}});
}

void ProjectStore::Copy(std::string_view from, std::string_view to) const { Make(to, ReadFiles(from)); }

void ProjectStore::Remove(std::string_view name) const {
  const std::string folder = Folder(name);
  files_.Replace(folder + "\\" + kRemoved, "");
  try {
    files_.Remove(folder + "\\" + kDatabase);
  } catch (const AutomationError&) {
    // With the folder it goes, or says why not.
  }
  RemoveMarked(folder);
}

void ProjectStore::RemoveMarked(const std::string& folder) const {
  for (const std::string& below : files_.ListFolders(folder)) {
    files_.RemoveFolder(folder + "\\" + below);
  }
  for (const std::string& name : files_.ListFiles(folder + "\\")) {
    if (!EqualIgnoringCase(name, kRemoved)) {
      files_.Remove(folder + "\\" + name);
    }
  }
  files_.RemoveFolder(folder);  // and the mark in it
}

std::vector<Unit> ProjectStore::ReadUnits(std::string_view name) const { return UnitsIn(Folder(name)); }

void ProjectStore::WriteUnits(std::string_view name, const std::vector<Unit>& units) const {
  const std::string folder = Folder(name);
  const std::shared_ptr<void> alone = files_.HoldForChange(folder + "\\" + kDatabase);
  const std::vector<ConfigRow> config = ReadConfig(application_.projectDatabases, folder + "\\" + kDatabase);
  Change(folder, kAdditions, {{kDatabase, MakeProjectDatabase(config, units)}, {kUnits, FormatUnits(units)}});
}

Fields ProjectStore::ReadProperties(std::string_view name) const {
  const std::string path = Folder(name) + "\\" + kProperties;
  Fields properties;
  if (files_.IsFile(path)) {
    const Json object = ParseJson(ReadJsonFile(files_, path), path);
    JsonMembers members(path, "", object);
    for (const auto& [key, value] : object.items()) {
      properties.emplace_back(key, members.TakeText(key));
    }
  }
  return properties;
}

void ProjectStore::WriteProperties(std::string_view name, const Fields& properties) const {
  files_.Replace(Folder(name) + "\\" + kProperties, FormatProperties(properties));
}

std::vector<ProjectFile> ProjectStore::ReadFiles(std::string_view name) const {
  std::vector<ProjectFile> found;
  AddFiles(files_, Folder(name), "", found);
  return found;
}

void ProjectStore::ReplaceFiles(std::string_view name, std::vector<ProjectFile> files) const {
  std::erase_if(files, [](const ProjectFile& file) { return IsMark(file.path); });
  Change(Folder(name), kContent, files);
}

void ProjectStore::Make(std::string_view name, std::vector<ProjectFile> files) const {
  const std::string folder = PlaceFor(name);
  RemoveUnfinished(folder);
  if (files_.IsFolder(folder) || files_.IsFile(folder)) {
    throw MakeRuntimeError(RuntimeError::FileExists, "the name of the project \"" + std::string(name) + "\" is taken");
  }
  // It is a project from the moment on when it has a database.
  std::stable_partition(files.begin(), files.end(),
                        [](const ProjectFile& file) { return !EqualIgnoringCase(file.path, kDatabase); });
  files_.CreateFolder(folder);
  try {
    FileChange change(files_);
    change.Write(folder, {{kUnfinished, ""}});
    change.Write(folder, files);
    change.Finish();
    files_.Remove(folder + "\\" + kUnfinished);
  } catch (const AutomationError&) {
    files_.RemoveFolder(folder);
    throw;
  }
}

std::vector<Unit> ProjectStore::UnitsIn(const std::string& folder) const {
  const std::string path = folder + "\\" + kUnits;
  return files_.IsFile(path) ? ParseUnits(ReadJsonFile(files_, path), path) : std::vector<Unit>();
}

void ProjectStore::Change(const std::string& folder, const char* writtenDown,
                          const std::vector<ProjectFile>& files) const {
  const std::shared_ptr<void> alone = files_.HoldForChange(folder + "\\" + kDatabase);
  FileChange change(files_);
  change.Write(folder, {{writtenDown, Packed(files)}});
  Carry(change, folder, writtenDown, files);
  files_.Remove(folder + "\\" + writtenDown);
  change.Finish();
}

void ProjectStore::Carry(FileChange& change, const std::string& folder, const char* writtenDown,
                         const std::vector<ProjectFile>& files) const {
  if (writtenDown == kAdditions) {
    change.Write(folder, files);
    return;
  }
  std::vector<std::string> kept;
  for (const ProjectFile& file : files) {
    kept.push_back(FoldName(file.path));
  }
  std::sort(kept.begin(), kept.end());
  std::vector<ProjectFile> before;
  AddFiles(files_, folder, "", before);
  for (const ProjectFile& old : before) {
    if (!std::binary_search(kept.begin(), kept.end(), FoldName(old.path))) {
      change.Remove(folder + "\\" + old.path);
    }
  }
  change.Write(folder, files);
  const std::vector<ConfigRow> config = ReadConfig(application_.projectDatabases, folder + "\\" + kDatabase);
  change.Write(folder, {{kDatabase, MakeProjectDatabase(config, UnitsIn(folder))}});
}

void ProjectStore::FinishChanges(const std::string& folder) const {
  for (const char* writtenDown : {kAdditions, kContent}) {
    const std::string path = folder + "\\" + writtenDown;
    if (!files_.IsFile(path)) {
      continue;
    }
    const std::shared_ptr<void> alone = files_.HoldForChange(folder + "\\" + kDatabase);
    if (!files_.IsFile(path)) {
      continue;  // who was at it has brought it to its end
    }
    FileChange change(files_);
    Carry(change, folder, writtenDown, Unpacked(application_, path));
    files_.Remove(path);
    change.Finish();
  }
  for (const char* name : {kUnfinished, kRemoved}) {
    if (const std::string mark = folder + "\\" + name; files_.IsFile(mark)) {
      files_.Remove(mark);
    }
  }
}

void ProjectStore::RemoveUnfinished(const std::string& folder) const {
  if (!files_.IsFolder(folder) || files_.IsFile(folder + "\\" + kDatabase)) {
    return;
  }
  std::vector<std::string> names = files_.ListFiles(folder + "\\");
  std::erase_if(names, IsNewFileName);
  const bool isEmpty = names.empty() && files_.ListFolders(folder).empty();
  if (isEmpty || files_.IsFile(folder + "\\" + kUnfinished) || files_.IsFile(folder + "\\" + kRemoved)) {
    files_.RemoveFolder(folder);
  }
}

}  // namespace parvex::standin
