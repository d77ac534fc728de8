#pragma once

#include "seams/host_system.h"

namespace parvex::windows {

/// This Windows. A file that is being made can be read by others, but neither written nor removed.
class NativeSystem : public HostSystem {
 public:
  Facts ThisProgram() override;
  std::uint32_t ThreadId() override;
  std::optional<std::string> Variable(std::string_view name) override;
  /// "Parvex\Recordings" in the user's local application data, else in the temporary folder.
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

 private:
  std::uint64_t clockStepsPerSecond_ = 0;
};

}  // namespace parvex::windows
