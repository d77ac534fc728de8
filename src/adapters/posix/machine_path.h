#pragma once

#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace parvex::posix {

/// A path of the machine, taken apart. Slash and backslash both separate, several in a row count as one; "." and ".."
/// are resolved in the text and never lead above the drive; dots and blanks at the end of a name are dropped; a path
/// without drive begins at C:\ (the current folder of every drive is its root).
struct MachinePath {
  char drive = 'C';  ///< upper case
  std::vector<std::string> names;
  bool endsInSeparator = false;  ///< the text can only mean a folder

  /// Nothing for a path that no file of the machine can have: empty, a network or device path, a device's name (NUL,
  /// COM1, ...), a name with a character that file names may not hold, more than
  /// kMostNamesOfPath names.
  static std::optional<MachinePath> Parse(std::string_view text);

  std::string Text() const;
  /// The folder that holds it; the drive's root for itself.
  MachinePath Parent() const;
};

}  // namespace parvex::posix
