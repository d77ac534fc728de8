#pragma once

#include <map>
#include <optional>
#include <string>
#include <string_view>

#include "seams/code_page.h"

namespace parvex {

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

  /// Everything, with key and value names folded.
  const Keys& All() const { return keys_; }

  /// A key with its hive ("HKEY_LOCAL_MACHINE\SOFTWARE\..."); letter case and extra backslashes do not matter. The
  /// default value has the empty name.
  std::optional<std::string> Value(std::string_view key, std::string_view valueName) const;

  /// A key below the machine's hive. What a 32-bit application of a 64-bit machine has written is found where such a
  /// machine exports it, under SOFTWARE\WOW6432Node, when the key itself lacks the value.
  std::optional<std::string> LocalMachineString(std::string_view key, std::string_view valueName) const;

 private:
  Keys keys_;
};

}  // namespace parvex
