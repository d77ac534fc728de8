#pragma once

#include <sys/stat.h>

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>

#include "adapters/posix/file_version.h"

namespace parvex::posix {

/// Finds names in folders of this system without regard to letter case. A folder is read once for each of its versions;
/// what this program itself adds and removes is noted, so that filling or emptying a folder file by file costs no
/// reading at all. The listings of the folders that were used last are kept.
///
/// A change that another program makes in the same moment as one of ours is seen when 50 ms have passed without one of
/// ours at the latest: a folder's time moves in steps, and within one step the two cannot be told apart.
class FolderNames {
 public:
  /// The first name in `folder`, in the order of the bytes, that is `name` in any letter case and leads somewhere.
  /// `status` is the folder's of this moment.
  std::optional<std::string> Find(const std::string& folder, const struct stat& status, const std::string& name);

  /// Before a change that this program makes in a folder; `status` is the folder's of this moment.
  void BeforeChange(const std::string& folder, const struct stat& status);
  /// After it: the name that came or went, or only that the change is over, if it failed.
  void AfterAdding(const std::string& folder, const std::string& name);
  void AfterRemoving(const std::string& folder, const std::string& name);
  void AfterFailing(const std::string& folder) { Noted(folder); }

  /// This program has just made the folder itself, which is empty, or removed it.
  void Made(const std::string& folder);
  void Gone(const std::string& folder) { listings_.erase(folder); }

 private:
  struct Listing {
    FileVersion version;
    /// No later change can carry the version's time.
    bool isExact = false;
    /// The version was made by a change of our own.
    bool isOurs = false;
    /// The names are those of the version.
    bool isRead = false;
    std::unordered_map<std::string, std::vector<std::string>> names = {};  // by folded name
    std::uint64_t lastUse = 0;

    bool Holds(const FileVersion& now) const;
  };

  const Listing* Current(const std::string& folder, const FileVersion& version);
  const Listing* Keep(const std::string& folder, Listing listing);
  Listing* Noted(const std::string& folder);

  std::unordered_map<std::string, Listing> listings_;
  std::uint64_t uses_ = 0;
};

}  // namespace parvex::posix
