#pragma once

#include <string_view>

#include "seams/files.h"

namespace parvex {

/// What files of a machine also offer where the adapter can: a file that survives a power cut.
class DurableFiles {
 public:
  virtual ~DurableFiles() = default;
  /// As Files::Replace, for a file that is the only copy of what a user has: a power cut leaves the old or the new one,
  /// and after the return the new one. Takes milliseconds, as long as the disk needs for it.
  virtual void ReplaceOnDisk(std::string_view path, std::string_view bytes) = 0;
};

/// The same of any files; those that cannot do it replace the file.
inline void ReplaceOnDisk(Files& files, std::string_view path, std::string_view bytes) {
  if (auto* durable = dynamic_cast<DurableFiles*>(&files)) {
    durable->ReplaceOnDisk(path, bytes);
  } else {
    files.Replace(path, bytes);
  }
}

}  // namespace parvex
