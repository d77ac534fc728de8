#pragma once

#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace parvex {

/// Files of the machine. Paths are the machine's own (drive letter, backslashes, letter case ignored, doubled
/// backslashes count as one); contents are bytes. Every failure is an AutomationError that names the path: file not
/// found (53), disk full (61), path/file access (75), path not found (76), file exists (58).
class Files {
 public:
  virtual ~Files() = default;

  /// Whether the path is an existing file (not a folder).
  virtual bool IsFile(std::string_view path) = 0;
  virtual bool IsFolder(std::string_view path) = 0;
  /// While what this returns lives, IsFile need not look again for a file that was missing, as long as the system tells
  /// of no change in its folder, which it may do a moment after another program's change. Null where every call looks.
  /// Must not outlive this.
  virtual std::shared_ptr<void> ExpectManyLooks() { return nullptr; }
  /// Whether an existing file may be a link, so that a change of a file with another name changes it, too.
  virtual bool MayBeLink(std::string_view) { return true; }

  /// The names of the files (not folders) that a directory listing of `pattern` gives, in the order of their
  /// upper-cased names. The last component of the pattern may hold * and ?; "*.*" and an empty last component match
  /// every file. Empty when the folder does not exist.
  virtual std::vector<std::string> ListFiles(std::string_view pattern) = 0;
  /// The names of the folders in a folder, in the same order.
  virtual std::vector<std::string> ListFolders(std::string_view folder) = 0;

  virtual std::string ReadAll(std::string_view path) = 0;
  /// What a file holds; nothing when the path is no existing file.
  virtual std::optional<std::string> ReadIfFile(std::string_view path) {
    return IsFile(path) ? std::optional(ReadAll(path)) : std::nullopt;
  }

  /// Makes `path` hold exactly `bytes`: written beside it and renamed over it, so that at every moment the old or the
  /// complete new file stands there. The folder must exist.
  virtual void Replace(std::string_view path, std::string_view bytes) = 0;
  /// The same for a file that must not exist yet; an existing one is an error (58) and stays as it is.
  virtual void CreateNew(std::string_view path, std::string_view bytes) = 0;

  /// Held by who reads a file, changes it and replaces it: nobody else of this system, in whatever process, does so
  /// meanwhile, and no change is lost. Waits for another one, and gives up after 30 s (70); a thread that holds it may
  /// ask again. Null where the file system knows no locks, or there is no such folder.
  virtual std::shared_ptr<void> HoldForChange(std::string_view) { return nullptr; }

  virtual void Remove(std::string_view path) = 0;

  /// Makes a folder and the folders above it; one that exists is no error.
  virtual void CreateFolder(std::string_view path) = 0;
  /// Removes a folder with everything in it.
  virtual void RemoveFolder(std::string_view path) = 0;
};

}  // namespace parvex
