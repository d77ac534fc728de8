#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "legacy_standin/installation/application.h"
#include "legacy_standin/projects/project_store.h"

namespace parvex::standin {

/// An archive of one project: a ZIP file whose name ends in ".E3A", with the project's files in a folder of its name.
struct ProjectArchive {
  std::string projectName;
  std::vector<ProjectFile> files;
};

/// The bytes of the archive's file.
std::string PackProject(const ProjectArchive& archive);

/// The project in an archive's file. A file that is none, is damaged, or does not hold one project with its database is
/// refused (5), a missing one too (53).
ProjectArchive ReadProjectArchive(const Application& application, const std::string& path);

/// The product data set groups that the archive has data of: the application's own, then those of its units, each once.
std::vector<std::string> GroupsIn(const ProjectArchive& archive);

/// Leaves out the units, and their data archives, whose group `groups` does not name: names with commas between, "*"
/// for all. The project's own files always stay. A list without a name is refused (5).
void KeepGroups(ProjectArchive& archive, std::string_view groups);

}  // namespace parvex::standin
