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
  /// The exact spelling of a path, whether it exists or not.
  std::string Exact(const MachinePath& path) const { return Exact(path, path.names.size()); }

  /// Whether a path means a file, and whether a folder; looked at in the same step.
  bool IsFile(std::string_view path);
  bool IsFolder(std::string_view path);
  /// Whether what a path means is reached by a link as its last name.
  bool IsLink(std::string_view path);

  /// Where something is to be written, as the folder was a moment ago.
  struct Place {
    std::filesystem::path host;
    std::string folder;  ///< that holds it, on this system
    struct stat folderStatus;
    std::optional<struct stat> existing;  ///< what is there now, links followed
  };

  /// Where a file is to be written: the existing file, else the name as given in its existing folder. AutomationErrors:
  /// the folder does not exist (76); the path is a folder, cannot be a file's, or leads out of its drive by a link
  /// (75).
  Place PlaceOf(std::string_view path, std::string_view doing = "write");
  Place PlaceOf(const MachinePath& path, std::string_view doing = "write");
  std::filesystem::path Target(std::string_view path, std::string_view doing = "write");
  /// Where an existing folder stands. AutomationErrors: it does not exist (76), or what holds it lies outside of its
  /// drive (75).
  Place PlaceOfFolder(const MachinePath& path);

  /// Something that this program makes or removes at a place, which keeps what is known of its folder true; otherwise
  /// that would have to be read again. Lives around the change, is told what came of it, and takes it for failed if
  /// nobody tells.
  class Change {
   public:
    Change(MachineFolder& machine, const Place& place);
    ~Change();
    Change(const Change&) = delete;
    Change& operator=(const Change&) = delete;

    void AddedFile();
    void AddedFolder();
    void Removed();

   private:
    std::string Name() const { return place_.host.filename().string(); }

    FolderNames& names_;
    const Place& place_;
    bool isOver_ = false;
  };

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
    bool isLink = false;
    bool IsFolder() const { return S_ISDIR(status.st_mode); }
  };
  std::string DriveFolder(char drive) const;
  std::string Exact(const MachinePath& path, std::size_t depth) const;
  Place PlaceOf(const MachinePath& path, const Found& existing, const Found& above);
  void RefuseFolderOutsideOfDrive(const MachinePath& path, const std::string& folder, const struct stat& status);
  void RefuseRealPathOutsideOfDrive(const MachinePath& path, const std::filesystem::path& host) const;
  std::optional<Found> Find(const MachinePath& path);
  std::optional<Found> Find(const MachinePath& path, std::size_t depth, const Found* above = nullptr);
  static std::optional<Found> Look(const std::string& host);

  std::filesystem::path root_;
  // The spelling of a host path as asked for, to the existing one that was found for it. Every use checks that it still
  // exists. A folder that later gains a second spelling of the same name keeps giving the one found first.
  std::unordered_map<std::string, std::string> found_;
  FolderNames folderNames_;
  // Folders that were seen to lie inside their drive. Another folder under the same path has another identity.
  std::unordered_map<std::string, FolderIdentity> inside_;
};

}  // namespace parvex::posix
