#pragma once

#include <optional>
#include <string>
#include <string_view>

#include "adapters/posix/file_version.h"
#include "adapters/posix/machine_folder.h"
#include "formats/registry/registry_text.h"
#include "seams/code_page.h"
#include "seams/own_settings.h"
#include "seams/registry.h"

namespace parvex::posix {

/// The machine's registry: registry.reg in its folder, none when there is no such file. The file is looked at on each
/// call and read when its version has changed. It holds both hives, as an export of several keys may.
class RegistryFile : public Registry, public OwnSettings {
 public:
  RegistryFile(const MachineFolder& folder, CodePage& codePage)
      : file_(folder.Root() / "registry.reg"), codePage_(codePage) {}

  std::optional<std::string> LocalMachineString(std::string_view key, std::string_view valueName) override;
  std::optional<std::string> Read(RegistryHive hive, std::string_view key, std::string_view valueName) override;
  /// Appends the value to the file, in the file's encoding; a file that is missing is made.
  void Write(RegistryHive hive, std::string_view key, std::string_view valueName, std::string_view text) override;

 private:
  const RegistryText& Text();
  RegistryText ReadText() const;

  std::filesystem::path file_;
  CodePage& codePage_;
  std::optional<FileVersion> version_;
  bool settled_ = true;
  RegistryText text_;
};

}  // namespace parvex::posix
