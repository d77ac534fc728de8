#include "adapters/posix/new_file.h"

#include <errno.h>
#include <fcntl.h>
#include <stdio.h>
#include <sys/file.h>
#include <sys/stat.h>
#include <unistd.h>

#include <utility>

#include "formats/text/new_file_names.h"

namespace parvex::posix {
namespace {

constexpr int kMaking = O_RDWR | O_CREAT | O_EXCL | O_NOFOLLOW | O_CLOEXEC;
constexpr int kMostNames = 1000;
constexpr mode_t kPermissions = 07777;

// What cannot be forced to a disk, as a folder of some file systems, needs not be.
int Forced(int descriptor) {
  return fsync(descriptor) == 0 || errno == EINVAL || errno == EROFS || errno == ENOSYS ? 0 : errno;
}

// Gives owner and group, as far as the system lets this user give a file away. Whether the group is the one wanted.
bool GiveTo(const struct stat& owner, int descriptor) {
  static const uid_t user = geteuid();
  static const gid_t group = getegid();
  constexpr uid_t kSameOwner = static_cast<uid_t>(-1);
  return (owner.st_uid == user && owner.st_gid == group) || fchown(descriptor, owner.st_uid, owner.st_gid) == 0 ||
         fchown(descriptor, kSameOwner, owner.st_gid) == 0;
}

}  // namespace

NewFile::NewFile(std::filesystem::path target) : target_(std::move(target)) {}

NewFile::~NewFile() {
  if (hasOwnName_) {
    unlink(path_.c_str());
  }
  if (descriptor_ >= 0) {
    close(descriptor_);
  }
}

int NewFile::Make(const struct stat* replaced, mode_t mode) {
  mode = replaced == nullptr ? mode : replaced->st_mode & 0777;
  for (int tries = 0; tries < kMostNames && descriptor_ < 0; ++tries) {
    path_ = NextPath();
    descriptor_ = open(path_.c_str(), kMaking, mode);
    if (descriptor_ < 0 && errno != EEXIST) {
      return errno;
    }
  }
  if (descriptor_ < 0) {
    return EEXIST;
  }
  hasOwnName_ = true;
  if (replaced == nullptr) {
    return 0;
  }
  // What one group may do is not for another.
  const mode_t permissions = kPermissions & ~(GiveTo(*replaced, descriptor_) ? 0 : S_IRWXG);
  return fchmod(descriptor_, replaced->st_mode & permissions) == 0 ? 0 : errno;
}

void NewFile::Hold() { flock(descriptor_, LOCK_EX | LOCK_NB); }

int NewFile::Append(std::string_view bytes) {
  while (!bytes.empty()) {
    const ssize_t written = write(descriptor_, bytes.data(), bytes.size());
    if (written < 0 && errno != EINTR) {
      return errno;
    }
    bytes.remove_prefix(written < 0 ? 0 : static_cast<std::size_t>(written));
  }
  return 0;
}

int NewFile::Flush() { return Forced(descriptor_); }

int NewFile::TakeName(IfPresent ifPresent) {
  const bool refuse = ifPresent == IfPresent::Refuse;
  if (renameat2(AT_FDCWD, path_.c_str(), AT_FDCWD, target_.c_str(), refuse ? RENAME_NOREPLACE : 0) == 0) {
    hasOwnName_ = false;
    return 0;
  }
  // Network file systems cannot rename without replacing, but a second name is refused where one is taken.
  const bool unsupported = refuse && errno == EINVAL;
  return unsupported && link(path_.c_str(), target_.c_str()) == 0 ? 0 : errno;
}

int NewFile::FlushFolder() {
  const std::filesystem::path folder = target_.parent_path();
  const int descriptor = open(folder.empty() ? "." : folder.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC);
  if (descriptor < 0) {
    return 0;  // one that may be written into, and not be read
  }
  const int failed = Forced(descriptor);
  close(descriptor);
  return failed;
}

std::filesystem::path NewFile::NextPath() const { return target_.parent_path() / MakeNewFileName(); }

}  // namespace parvex::posix
