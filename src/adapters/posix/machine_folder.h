#pragma once

#include <sys/stat.h>
#include <sys/types.h>

#include <cstddef>
#include <filesystem>
#include <optional>
#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>

#include "adapters/posix/folder_names.h"
#include "adapters/posix/machine_path.h"

namespace parvex::posix {

/// Where the machine's drives, folders and files are on this system: drive X is the folder drive_x of the root. Letter
/// case is ignored component by component: the exact name is taken first, else the first match in the order of the
/// bytes.
///
/// Links are followed. A link that leads out of its drive can be read through but not written through: Target refuses
/// it. The drive folder itself may be a link (to the drive of a Wine prefix, for example); the drive then is what it
/// leads to.
///
/// Looking up a path whose spelling is exact or was looked up before costs one or two stat calls; any other, one
/// reading of each folder in which a name is spelled differently. Belongs to one thread at a time.
class MachineFolder {
 public:
  /// A folder that does not exist is an AutomationError (76).
  explicit MachineFolder(const std::filesystem::path& root);

  /// Absolute, without a final slash.
  const std::filesystem::path& Root() const { return root_; }

  /// The existing file or folder that a path means, nothing when there is none.
  std::optional<std::filesystem::path> Resolve(std::string_view path);
  std::optional<std::filesystem::path> Resolve(const MachinePath& path);

  /// Whether a path means a file, and whether a folder; looked at in the same step.
  bool IsFile(std::string_view path);
  bool IsFolder(std::string_view path);

  /// Where a file is to be written: the existing file, else the name as given in its existing folder. AutomationErrors:
  /// the folder does not exist (76); the path is a folder, cannot be a file's, or leads out of its drive by a link
  /// (75).
  std::filesystem::path Target(std::string_view path, std::string_view doing = "write");
  std::filesystem::path Target(const MachinePath& path, std::string_view doing = "write");

  /// An AutomationError (75) when `host`, on the way to `path`, was reached by a link that leads out of the path's
  /// drive.
  void RefuseOutsideOfDrive(const MachinePath& path, const std::filesystem::path& host);

  /// Called around the making and removing of a file by this program, so that its folder need not be read again: before
  /// it, and with the file that came or went after it.
  void Changing(const std::filesystem::path& host);
  void Added(const std::filesystem::path& host);
  void Removed(const std::filesystem::path& host);

 private:
  struct FolderIdentity {
    dev_t device;
    ino_t inode;
    bool operator==(const FolderIdentity&) const = default;
  };
  /// What a path means, as it was a moment ago.
  struct Found {
    std::string host;
    struct stat status;
    bool IsFolder() const { return S_ISDIR(status.st_mode); }
  };
  static std::optional<FolderIdentity> IdentityOf(const std::string& folder);

  std::string DriveFolder(char drive) const;
  void RefuseRealPathOutsideOfDrive(const MachinePath& path, const std::filesystem::path& host) const;
  std::optional<Found> Find(const MachinePath& path);
  std::optional<Found> Find(const MachinePath& path, std::size_t depth);

  std::filesystem::path root_;
  // The spelling of a host path as asked for, to the existing one that was found for it. Every use checks that it still
  // exists. A folder that later gains a second spelling of the same name keeps giving the one found first.
  std::unordered_map<std::string, std::string> found_;
  FolderNames folderNames_;
  // Folders that were seen to lie inside their drive. Another folder under the same path has another identity.
  std::unordered_map<std::string, FolderIdentity> inside_;
};

}  // namespace parvex::posix
