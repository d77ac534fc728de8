#pragma once

#include <optional>
#include <string>
#include <string_view>
#include <unordered_set>

#include "formats/zip/zip_reader.h"
#include "seams/platform.h"

namespace parvex {

/// The blobs that a selection names, of its tags and of their accessories. They are read when somebody asks for the
/// first time: few archives hold more than their text.
class NamedBlobs {
 public:
  /// Platform and path outlive this, and the output file does not change meanwhile.
  NamedBlobs(const Platform& platform, std::string_view qbOutputFile)
      : platform_(platform), qbOutputFile_(qbOutputFile) {}

  /// Whether one of them is at the path, in whatever letter case, and by whichever of its two names.
  bool Contain(std::string_view path);

 private:
  void Add(const std::string& blob);

  const Platform& platform_;
  const std::string_view qbOutputFile_;
  std::optional<std::unordered_set<std::string>> blobs_;
};

/// Refuses an entry of an archive (an AutomationError, 5, that names both) whose file an archive has no business to
/// replace: one of those that runs are handed over by, wherever it lies; a blob of the selection; an existing database
/// or settings file that holds other bytes. `named` may be null.
void RefuseProtectedFile(Files& files, std::string_view folder, const PackedEntry& entry, std::string_view blobPath,
                         NamedBlobs* named);

}  // namespace parvex
