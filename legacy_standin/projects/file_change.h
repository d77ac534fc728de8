#pragma once

#include <optional>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "seams/files.h"

namespace parvex::standin {

/// A file of a project by its path below the project's folder, components separated by backslashes.
struct ProjectFile {
  std::string path;
  std::string bytes;
};

/// A change of several files, which puts back what it had changed when it does not come to its end.
class FileChange {
 public:
  explicit FileChange(Files& files) : files_(files) {}
  /// The last change is put back first; as far as the disk lets it: what made the change fail may stand in the way of
  /// this too.
  ~FileChange();
  FileChange(const FileChange&) = delete;
  FileChange& operator=(const FileChange&) = delete;

  /// Makes the folders of the files, too.
  void Write(const std::string& folder, const std::vector<ProjectFile>& files);
  void Remove(const std::string& path);
  /// Nothing is put back any more.
  void Finish() { before_.clear(); }

 private:
  Files& files_;
  std::vector<std::pair<std::string, std::optional<std::string>>> before_;
};

}  // namespace parvex::standin
