#pragma once

#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "legacy_standin/installation/application.h"
#include "legacy_standin/projects/file_change.h"
#include "legacy_standin/projects/units.h"

namespace parvex::standin {

/// A row of the table Config: product data set group, key, value.
struct ConfigRow {
  std::optional<std::string> pdsg;
  std::optional<std::string> key;
  std::optional<std::string> value;
};

/// The bytes of a project's database: Config with these rows, and TagIndex, where the number of each unit's tag is
/// found by its family, its version and its name.
std::string MakeProjectDatabase(const std::vector<ConfigRow>& config, const std::vector<Unit>& units);

/// The projects of the application, each a folder in Root()\Projects with project.mdb, units.json, properties.json and
/// the data archives of its tags (docs/standin.md). Letter case of names is ignored.
///
/// Everything is read from the disk anew. What is refused is an AutomationError: an unknown project (76), a name that
/// is taken (58), a name that no folder can have (5). A change that fails puts back what it had changed; one whose
/// program was killed is brought to its end by the next use of the project, or was never begun.
class ProjectStore {
 public:
  explicit ProjectStore(const Application& application) : application_(application), files_(application.files) {}

  /// The names of all projects as their folders spell them, in the order of their upper-cased form.
  std::vector<std::string> Names() const;
  bool Exists(std::string_view name) const;
  /// The name as the project's folder spells it.
  std::string NameOf(std::string_view name) const;
  /// The full path of the project's folder, without final backslash.
  std::string Folder(std::string_view name) const;
  /// Where a project of that name lies or would lie; refuses only names that no folder can have.
  std::string PlaceFor(std::string_view name) const;

  /// Makes a project without units, with an empty Config.
  void Create(std::string_view name, const Fields& properties = {}) const;
  void Copy(std::string_view from, std::string_view to) const;
  void Remove(std::string_view name) const;

  std::vector<Unit> ReadUnits(std::string_view name) const;
  /// Stores the units and makes TagIndex say the same; Config keeps its rows.
  void WriteUnits(std::string_view name, const std::vector<Unit>& units) const;

  /// The properties beside those in Config, in the order in which they were stored.
  Fields ReadProperties(std::string_view name) const;
  void WriteProperties(std::string_view name, const Fields& properties) const;

  /// All files of the project, those in folders of its folder included.
  std::vector<ProjectFile> ReadFiles(std::string_view name) const;
  /// Makes the project have these files and no others; TagIndex says what its units say.
  void ReplaceFiles(std::string_view name, std::vector<ProjectFile> files) const;

 private:
  void Make(std::string_view name, std::vector<ProjectFile> files) const;
  std::vector<Unit> UnitsIn(const std::string& folder) const;
  void Change(const std::string& folder, const char* writtenDown, const std::vector<ProjectFile>& files) const;
  void Carry(FileChange& change, const std::string& folder, const char* writtenDown,
             const std::vector<ProjectFile>& files) const;
  void FinishChanges(const std::string& folder) const;
  void RemoveUnfinished(const std::string& folder) const;
  /// Whether the folder holds a project. What is left of one whose removal was killed goes.
  bool IsProject(const std::string& folder) const;
  /// Removes what is left of a project, the mark last.
  void RemoveMarked(const std::string& folder) const;

  const Application& application_;
  Files& files_;
};

}  // namespace parvex::standin
