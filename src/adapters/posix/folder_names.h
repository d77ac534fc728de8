#pragma once

#include <sys/stat.h>

#include <optional>
#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>

#include "adapters/posix/file_version.h"

namespace parvex::posix {

/// Finds names in folders of this system without regard to letter case. A folder is read once for each of its versions;
/// what this program itself adds and removes is noted, so that filling or emptying a folder file by file costs no
/// reading at all.
///
/// A change that another program makes in the same moment as one of ours is seen 50 ms later at the latest: a folder's
/// time moves in steps, and within one step the two cannot be told apart.
class FolderNames {
 public:
  /// The first name in `folder`, in the order of the bytes, that is `name` in any letter case and leads somewhere.
  /// `status` is the folder's of this moment.
  std::optional<std::string> Find(const std::string& folder, const struct stat& status, const std::string& name);

  /// Called around a change that this program makes in a folder: before it, and with the name that came or went after
  /// it.
  void BeforeChange(const std::string& folder);
  void AfterAdding(const std::string& folder, const std::string& name);
  void AfterRemoving(const std::string& folder, const std::string& name);

 private:
  struct Listing {
    FileVersion version;
    /// No later change can carry the version's time.
    bool isExact = false;
    /// Not exact, but only because of changes of our own, which are noted.
    bool isOurs = false;
    std::unordered_map<std::string, std::vector<std::string>> names;  // by folded name
  };

  const Listing* Current(const std::string& folder, const FileVersion& version);
  Listing* Noted(const std::string& folder);

  std::unordered_map<std::string, Listing> listings_;
};

}  // namespace parvex::posix
