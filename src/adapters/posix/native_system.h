#pragma once

#include "seams/host_system.h"

namespace parvex::posix {

/// This system, of a program that works on a machine folder. A file that is being made is locked by a lock of flock(2);
/// records are readable by their owner only.
class NativeSystem : public HostSystem {
 public:
  Facts ThisProgram() override;
  std::uint32_t ThreadId() override;
  std::optional<std::string> Variable(std::string_view name) override;
  /// "parvex/recordings" below XDG_STATE_HOME or ~/.local/state. Raises an error for a user without a home.
  std::string DefaultFolder() override;
  std::string LocalTime() override;
  std::string UniversalTime() override;
  std::uint64_t Microseconds() override;
  void CreateFolders(std::string_view path) override;
  bool CreateNewFolder(std::string_view path) override;
  std::unique_ptr<File> MakeFile(std::string_view path) override;
  std::unique_ptr<Replacement> MakeReplacement(std::string_view path, Readers readers) override;
  bool IsInUse(std::string_view path) override;
  bool IsFolder(std::string_view path) override;
  std::uint64_t SizeOf(std::string_view path) override;
  std::string ReadAll(std::string_view path) override;
  void WriteAll(std::string_view path, std::string_view bytes) override;
  void Rename(std::string_view from, std::string_view to) override;
  void Remove(std::string_view path) override;
  void RemoveFolder(std::string_view path) override;
  std::vector<Entry> List(std::string_view folder) override;
};

}  // namespace parvex::posix
