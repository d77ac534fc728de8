#pragma once

#include <sys/stat.h>

#include <filesystem>
#include <string_view>

namespace parvex::posix {

enum class IfPresent { Replace, Refuse };

/// A file that is written beside the one that it is to become, and takes its name in one step; removed at the end
/// unless it did. The functions give 0 or the system's error number.
class NewFile {
 public:
  explicit NewFile(std::filesystem::path target);
  ~NewFile();
  NewFile(const NewFile&) = delete;
  NewFile& operator=(const NewFile&) = delete;

  /// Under a name that nobody has, with the owner and the permissions of `replaced` before the first byte is written.
  /// Without one, with `mode` as the user's mask leaves it.
  int Make(const struct stat* replaced, mode_t mode = 0666);
  /// Makes nobody take it for a leftover, however long it is written.
  void Hold();
  int Append(std::string_view bytes);
  /// Has the disk take the bytes before the name goes over to them, so that a power cut leaves the old or the new file.
  int Flush();
  int TakeName(IfPresent ifPresent);
  /// Has the disk take the name, after TakeName.
  int FlushFolder();

  int Descriptor() const { return descriptor_; }

 private:
  std::filesystem::path NextPath() const;

  std::filesystem::path target_;
  std::filesystem::path path_;
  int descriptor_ = -1;
  bool hasOwnName_ = false;
};

}  // namespace parvex::posix
