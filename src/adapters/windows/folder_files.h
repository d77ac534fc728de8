#pragma once

#include <cstdint>
#include <functional>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "adapters/windows/system_files.h"
#include "seams/file_parts.h"
#include "seams/files.h"

namespace parvex::windows {

/// Files of a machine that a folder of this Windows stands for: "D:\a" is drive_d\a in it, a path without a drive
/// begins at drive_c, one of a network at unc. Nothing outside of the folder is reached by a name; errors name the path
/// that was asked for.
class FolderFiles : public Files, public FileParts, public DurableFiles {
 public:
  /// A path of this system, of any length; the folder need not exist.
  explicit FolderFiles(std::string_view folder);

  /// The path of this system for one of the machine; nothing for one that no file of the machine can have.
  std::optional<std::string> Resolve(std::string_view path) const;

  bool IsFile(std::string_view path) override;
  bool IsFolder(std::string_view path) override;
  std::vector<std::string> ListFiles(std::string_view pattern) override;
  std::vector<std::string> ListFolders(std::string_view folder) override;
  std::string ReadAll(std::string_view path) override;
  std::string ReadPart(std::string_view path, std::uint64_t at, std::size_t most) override;
  void Replace(std::string_view path, std::string_view bytes) override;
  void ReplaceOnDisk(std::string_view path, std::string_view bytes) override;
  void CreateNew(std::string_view path, std::string_view bytes) override;
  void Remove(std::string_view path) override;
  void CreateFolder(std::string_view path) override;
  void RemoveFolder(std::string_view path) override;

 private:
  std::string Existing(std::string_view path, std::string_view doing) const;
  std::string Target(std::string_view path, std::string_view doing) const;
  void RefuseMissingDrive(const std::string& host, std::string_view path);
  /// Carries out a step on a path of this system; its errors then name the machine's.
  void Named(std::string_view path, const std::string& host, const std::function<void()>& step) const;

  SystemFiles files_;
  std::string root_;  // in the form that has no limit of length, without a final backslash
};

}  // namespace parvex::windows
