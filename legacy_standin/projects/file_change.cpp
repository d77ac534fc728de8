#include "legacy_standin/projects/file_change.h"

#include <algorithm>

#include "seams/automation_error.h"

namespace parvex::standin {

FileChange::~FileChange() {
  std::for_each(before_.rbegin(), before_.rend(), [this](const auto& one) {
    const auto& [path, bytes] = one;
    try {
      bytes ? files_.Replace(path, *bytes) : files_.Remove(path);
    } catch (const AutomationError&) {
      return;
    }
  });
}

void FileChange::Write(const std::string& folder, const std::vector<ProjectFile>& files) {
  for (const ProjectFile& file : files) {
    const std::string path = folder + "\\" + file.path;
    files_.CreateFolder(path.substr(0, path.find_last_of('\\')));
    std::optional<std::string> before = files_.IsFile(path) ? std::optional(files_.ReadAll(path)) : std::nullopt;
    files_.Replace(path, file.bytes);
    before_.emplace_back(path, std::move(before));
  }
}

void FileChange::Remove(const std::string& path) {
  std::string before = files_.ReadAll(path);
  files_.Remove(path);
  before_.emplace_back(path, std::move(before));
}

}  // namespace parvex::standin
