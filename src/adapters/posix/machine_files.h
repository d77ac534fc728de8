#pragma once

#include "adapters/posix/host_file.h"
#include "adapters/posix/machine_folder.h"
#include "seams/durable_files.h"
#include "seams/file_parts.h"
#include "seams/files.h"

namespace parvex::posix {

/// The files of a machine folder. A file without any write permission is read-only: it is neither replaced nor removed.
/// A path that no file can have is one that does not exist.
class MachineFiles : public Files, public FileParts, public DurableFiles {
 public:
  explicit MachineFiles(MachineFolder& folder) : folder_(folder) {}

  bool IsFile(std::string_view path) override;
  bool IsFolder(std::string_view path) override;
  bool MayBeLink(std::string_view path) override { return path != plain_ && folder_.IsLink(path); }
  std::vector<std::string> ListFiles(std::string_view pattern) override;
  std::vector<std::string> ListFolders(std::string_view folder) override;
  std::string ReadAll(std::string_view path) override;
  std::optional<std::string> ReadIfFile(std::string_view path) override;
  std::string ReadPart(std::string_view path, std::uint64_t at, std::size_t most) override;
  std::optional<std::string> VersionOf(std::string_view path) override;
  void Replace(std::string_view path, std::string_view bytes) override;
  void ReplaceOnDisk(std::string_view path, std::string_view bytes) override;
  void CreateNew(std::string_view path, std::string_view bytes) override;
  std::shared_ptr<void> HoldForChange(std::string_view path) override;
  void Remove(std::string_view path) override;
  void CreateFolder(std::string_view path) override;
  void RemoveFolder(std::string_view path) override;

 private:
  void Write(std::string_view path, std::string_view bytes, IfPresent ifPresent, Durability durability);
  std::filesystem::path Existing(std::string_view path, std::string_view doing);

  MachineFolder& folder_;
  std::string plain_;  // read last, and no link: what this program writes makes it none
};

/// Whether a name matches a directory pattern, letter case ignored: * is any run of characters; ? is one character, or
/// none before a dot and at the name's end; ".*" at the pattern's end also matches a name without extension.
bool MatchesPattern(std::string_view name, std::string_view pattern);

}  // namespace parvex::posix
