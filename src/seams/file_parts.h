#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

#include "seams/files.h"

namespace parvex {

/// What files of a machine also offer where the adapter can: a file by pieces, for whom the whole may be too much.
class FileParts {
 public:
  virtual ~FileParts() = default;
  /// At most `most` bytes of a file from `at` on, fewer where it ends; errors as of Files::ReadAll. The file may change
  /// between two such readings.
  virtual std::string ReadPart(std::string_view path, std::uint64_t at, std::size_t most) = 0;
  /// What stays the same as long as a file is not changed, and is another one as soon as it is; nothing where the
  /// system cannot promise that, or there is no such file.
  virtual std::optional<std::string> VersionOf(std::string_view) { return std::nullopt; }
};

/// The same of any files; those that cannot do it read the whole.
inline std::string ReadPart(Files& files, std::string_view path, std::uint64_t at, std::size_t most) {
  if (auto* parts = dynamic_cast<FileParts*>(&files)) {
    return parts->ReadPart(path, at, most);
  }
  const std::string whole = files.ReadAll(path);
  return at < whole.size() ? whole.substr(static_cast<std::size_t>(at), most) : std::string();
}

inline std::optional<std::string> VersionOf(Files& files, std::string_view path) {
  auto* parts = dynamic_cast<FileParts*>(&files);
  return parts != nullptr ? parts->VersionOf(path) : std::nullopt;
}

}  // namespace parvex
