#pragma once

#include <map>
#include <optional>
#include <string>
#include <string_view>

#include "adapters/posix/file_version.h"
#include "adapters/posix/machine_folder.h"
#include "seams/code_page.h"
#include "seams/own_settings.h"
#include "seams/registry.h"

namespace parvex::posix {

/// The string values of a registry text as the Windows registry editor exports it ("Windows Registry Editor Version
/// 5.00" in UTF-16 or UTF-8 with a byte order mark, or "REGEDIT4" in the ANSI code page): plain and expandable strings,
/// quoted or as hexadecimal bytes, also over several lines. Lines that set nothing of this are skipped, deletions are
/// carried out, of several values for one name the last counts.
class RegistryText {
 public:
  using Values = std::map<std::string, std::string>;  ///< by folded name
  using Keys = std::map<std::string, Values>;         ///< by folded key

  RegistryText() = default;
  RegistryText(std::string_view bytes, CodePage& codePage);

  /// A key with its hive ("HKEY_LOCAL_MACHINE\SOFTWARE\..."); letter case and extra backslashes do not matter. The
  /// default value has the empty name.
  std::optional<std::string> Value(std::string_view key, std::string_view valueName) const;

 private:
  Keys keys_;
};

/// The machine's registry: registry.reg in its folder, none when there is no such file. The file is looked at on each
/// call and read when its version has changed. It holds both hives, as an export of several keys may. What a 32-bit
/// application of a 64-bit machine has written is found where such a machine exports it, under SOFTWARE\WOW6432Node,
/// when the key itself lacks the value.
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
