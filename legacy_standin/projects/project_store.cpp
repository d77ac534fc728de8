#include "legacy_standin/projects/project_store.h"

#include <algorithm>
#include <array>
#include <utility>

#include "formats/jet/writer.h"
#include "formats/text/file_names.h"
#include "formats/text/text.h"
#include "formats/zip/entry_names.h"
#include "legacy_standin/installation/json_members.h"
#include "seams/automation_error.h"

namespace parvex::standin {
namespace {

constexpr const char* kDatabase = "project.mdb";
constexpr const char* kUnits = "units.json";
constexpr const char* kProperties = "properties.json";

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

void AddFiles(Files& files, const std::string& folder, const std::string& below, std::vector<ProjectFile>& found) {
  for (const std::string& name : files.ListFiles(folder + "\\" + below)) {
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

/// A change of several files, which puts back what it had changed when it does not come to its end.
class FileChange {
 public:
  explicit FileChange(Files& files) : files_(files) {}
  FileChange(const FileChange&) = delete;
  FileChange& operator=(const FileChange&) = delete;

  /// As far as the disk lets it: what made the change fail may stand in the way of this too.
  ~FileChange() {
    for (const auto& [path, bytes] : before_) {
      try {
        bytes ? files_.Replace(path, *bytes) : files_.Remove(path);
      } catch (const AutomationError&) {
        continue;
      }
    }
  }

  void Write(const std::string& folder, const std::vector<ProjectFile>& files) {
    for (const ProjectFile& file : files) {
      const std::string path = folder + "\\" + file.path;
      files_.CreateFolder(path.substr(0, path.find_last_of('\\')));
      std::optional<std::string> before = files_.IsFile(path) ? std::optional(files_.ReadAll(path)) : std::nullopt;
      files_.Replace(path, file.bytes);
      before_.emplace_back(path, std::move(before));
    }
  }

  void Remove(const std::string& path) {
    std::string before = files_.ReadAll(path);
    files_.Remove(path);
    before_.emplace_back(path, std::move(before));
  }

  void Finish() { before_.clear(); }

 private:
  Files& files_;
  std::vector<std::pair<std::string, std::optional<std::string>>> before_;
};

}  // namespace

std::string MakeProjectDatabase(const std::vector<ConfigRow>& config, const std::vector<Unit>& units) {
  const std::array tables = {ConfigTable(config), TagIndexTable(units)};
  return MakeJetDatabase(tables);
}

std::vector<std::string> ProjectStore::Names() const {
  const std::string projects = application_.Root() + "\\Projects";
  std::vector<std::string> names = files_.ListFolders(projects);
  std::erase_if(names,
                [&](const std::string& name) { return !files_.IsFile(projects + "\\" + name + "\\" + kDatabase); });
  return names;
}

bool ProjectStore::Exists(std::string_view name) const {
  return !ProblemOfProjectName(name) && files_.IsFile(PlaceFor(name) + "\\" + kDatabase);
}

std::string ProjectStore::NameOf(std::string_view name) const {
  if (!Exists(name)) {
    throw MakeRuntimeError(RuntimeError::PathNotFound, "there is no project \"" + std::string(name) + "\"");
  }
  for (const std::string& spelled : files_.ListFolders(application_.Root() + "\\Projects")) {
    if (EqualIgnoringCase(spelled, name)) {
      return spelled;
    }
  }
  return std::string(name);
}

std::string ProjectStore::Folder(std::string_view name) const { return PlaceFor(NameOf(name)); }

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

void ProjectStore::Remove(std::string_view name) const { files_.RemoveFolder(Folder(name)); }

std::vector<Unit> ProjectStore::ReadUnits(std::string_view name) const {
  const std::string path = Folder(name) + "\\" + kUnits;
  return files_.IsFile(path) ? ParseUnits(files_.ReadAll(path), path) : std::vector<Unit>();
}

void ProjectStore::WriteUnits(std::string_view name, const std::vector<Unit>& units) const {
  const std::string folder = Folder(name);
  const std::vector<ConfigRow> config = ReadConfig(application_.projectDatabases, folder + "\\" + kDatabase);
  FileChange change(files_);
  change.Write(folder, {{kDatabase, MakeProjectDatabase(config, units)}, {kUnits, FormatUnits(units)}});
  change.Finish();
}

Fields ProjectStore::ReadProperties(std::string_view name) const {
  const std::string path = Folder(name) + "\\" + kProperties;
  Fields properties;
  if (files_.IsFile(path)) {
    const Json object = ParseJson(files_.ReadAll(path), path);
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

void ProjectStore::ReplaceFiles(std::string_view name, const std::vector<ProjectFile>& files) const {
  const std::string folder = Folder(name);
  std::vector<std::string> kept;
  for (const ProjectFile& file : files) {
    kept.push_back(ToUpper(file.path));
  }
  std::sort(kept.begin(), kept.end());
  FileChange change(files_);
  for (const ProjectFile& old : ReadFiles(name)) {
    if (!std::binary_search(kept.begin(), kept.end(), ToUpper(old.path))) {
      change.Remove(folder + "\\" + old.path);
    }
  }
  change.Write(folder, files);
  change.Finish();
}

void ProjectStore::Make(std::string_view name, const std::vector<ProjectFile>& files) const {
  const std::string folder = PlaceFor(name);
  if (files_.IsFolder(folder) || files_.IsFile(folder)) {
    throw MakeRuntimeError(RuntimeError::FileExists, "the name of the project \"" + std::string(name) + "\" is taken");
  }
  files_.CreateFolder(folder);
  try {
    FileChange change(files_);
    change.Write(folder, files);
    change.Finish();
  } catch (const AutomationError&) {
    files_.RemoveFolder(folder);
    throw;
  }
}

}  // namespace parvex::standin
