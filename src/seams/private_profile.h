#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>
#include <string>
#include <string_view>

namespace parvex {

/// One section of a private profile (ini) file, looked up by the rules of the platform's private-profile functions:
/// letter case of sections and keys is ignored, the first duplicate wins, blanks around keys and values are trimmed,
/// one pair of quotes around a value is stripped. Texts travel through the machine's ANSI code page and end at a NUL.
///
/// A section sees its own writes. Whether it sees what others write while it lives depends on the platform: one that
/// was made later does.
class ProfileSection {
 public:
  virtual ~ProfileSection() = default;

  /// The value of `key`, or `fallback` (without its trailing blanks) when the section, the key or the file does not
  /// exist, or the key's line has no "="; cut to `bufferSize` - 1 bytes in the ANSI code page.
  virtual std::string ReadString(std::string_view key, std::string_view fallback, std::size_t bufferSize) = 0;

  /// The leading integer of the value, of which the low 32 bits count; 0x, 0o and 0b begin other bases. `fallback` when
  /// there is no such key or its value is empty; 0 for a value that begins with no number.
  virtual std::int32_t ReadInteger(std::string_view key, std::int32_t fallback) = 0;

  /// Sets a value, making section and file where they do not exist; leading blanks of the value go. The file is
  /// replaced as a whole, as it is at that moment: what another program writes in between is lost. False when it could
  /// not be written; the file is then as it was.
  virtual bool WriteString(std::string_view key, std::string_view value) = 0;
};

class PrivateProfile {
 public:
  virtual ~PrivateProfile() = default;

  /// The section `section` of the file `file` (a path of the machine). The file's version is looked at here: what
  /// another program writes later is seen by the next call. The file need not exist. The section object must not
  /// outlive this.
  virtual std::unique_ptr<ProfileSection> Section(std::string_view section, std::string_view file) = 0;

  /// While what this returns lives, the sections of `file` show it as it was now, or as this program wrote it since,
  /// and making one need not look at the file. What is kept of the file may go with it. Null where every section looks
  /// for itself. Must not outlive this.
  virtual std::shared_ptr<void> Hold(std::string_view) { return nullptr; }
};

}  // namespace parvex
