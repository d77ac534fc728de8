#include "adapters/posix/leftovers.h"

#include <dirent.h>
#include <fcntl.h>
#include <sys/file.h>
#include <sys/stat.h>
#include <time.h>
#include <unistd.h>

#include <memory>
#include <mutex>
#include <string>
#include <unordered_set>

#include "formats/text/new_file_names.h"

namespace parvex::posix {
namespace {

constexpr std::size_t kMostKnownFolders = 4096;

bool IsFirstLook(const std::string& folder) {
  static std::mutex mutex;
  static std::unordered_set<std::string> known;
  const std::lock_guard<std::mutex> alone(mutex);
  if (known.size() == kMostKnownFolders) {
    known.clear();
  }
  return known.insert(folder).second;
}

// Who writes a file for long, holds it by a lock.
bool IsLeftover(const std::string& path) {
  const int file = open(path.c_str(), O_RDONLY | O_NOFOLLOW | O_NONBLOCK | O_CLOEXEC);
  if (file < 0) {
    return false;
  }
  struct stat status = {};
  const bool is = fstat(file, &status) == 0 && S_ISREG(status.st_mode) &&
                  status.st_mtime < time(nullptr) - kSecondsOfNewFile && flock(file, LOCK_EX | LOCK_NB) == 0;
  close(file);
  return is;
}

}  // namespace

bool RemoveLeftovers(const std::filesystem::path& folder) {
  const std::string name = folder.empty() ? "." : folder.string();
  if (!IsFirstLook(name)) {
    return false;
  }
  const std::unique_ptr<DIR, int (*)(DIR*)> open(opendir(name.c_str()), closedir);
  bool removed = false;
  while (const dirent* entry = open ? readdir(open.get()) : nullptr) {
    if (IsNewFileName(entry->d_name)) {
      const std::string path = name + "/" + entry->d_name;
      removed = (IsLeftover(path) && unlink(path.c_str()) == 0) || removed;
    }
  }
  return removed;
}

void NoteWithoutLeftovers(const std::filesystem::path& folder) { IsFirstLook(folder.string()); }

}  // namespace parvex::posix
