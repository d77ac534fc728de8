#pragma once

#include "adapters/windows/missing_files.h"
#include "adapters/windows/named_locks.h"
#include "seams/durable_files.h"
#include "seams/file_parts.h"
#include "seams/files.h"

namespace parvex::windows {

class SystemFiles : public Files, public FileParts, public DurableFiles {
 public:
  bool IsFile(std::string_view path) override;
  bool IsFolder(std::string_view path) override;
  std::vector<std::string> ListFiles(std::string_view pattern) override;
  std::vector<std::string> ListFolders(std::string_view folder) override;
  std::string ReadAll(std::string_view path) override;
  std::string ReadPart(std::string_view path, std::uint64_t at, std::size_t most) override;
  void Replace(std::string_view path, std::string_view bytes) override;
  void ReplaceOnDisk(std::string_view path, std::string_view bytes) override;
  void CreateNew(std::string_view path, std::string_view bytes) override;
  std::shared_ptr<void> HoldForChange(std::string_view path) override { return HoldNamed(path); }
  void Remove(std::string_view path) override;
  void CreateFolder(std::string_view path) override;
  void RemoveFolder(std::string_view path) override;
  std::shared_ptr<void> ExpectManyLooks() override;

 private:
  MissingFiles missing_;
  unsigned holders_ = 0;  ///< of what ExpectManyLooks gave
};

}  // namespace parvex::windows
