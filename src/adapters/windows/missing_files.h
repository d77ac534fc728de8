#pragma once

#include <windows.h>

#include <string>
#include <string_view>
#include <unordered_set>

namespace parvex::windows {

/// Files of one folder that were asked for in vain, for as long as the system tells of no name that came or went there.
/// A look for a name that is not there costs Windows little, but Wine the reading of the whole folder.
///
/// Where the system tells of no changes, as on some network drives, nothing is remembered.
class MissingFiles {
 public:
  MissingFiles() = default;
  ~MissingFiles() { Forget(); }
  MissingFiles(const MissingFiles&) = delete;
  MissingFiles& operator=(const MissingFiles&) = delete;

  /// Whether the file was missing and nothing has come into its folder since.
  bool Knows(const std::string& path);
  /// A look has just found the file missing. It is remembered if the folder was watched before that look; else the
  /// watch begins.
  void Note(const std::string& path);
  /// Before a change that this program makes, which the system may tell of too late, and which a folder that is watched
  /// may refuse.
  void Forget();

 private:
  bool Watches(std::string_view folder);

  std::string folder_;  ///< with its final backslash
  HANDLE changes_ = INVALID_HANDLE_VALUE;
  std::unordered_set<std::string> names_;  ///< paths, as they were asked for
};

}  // namespace parvex::windows
