#pragma once

#include <filesystem>
#include <string>
#include <string_view>
#include <vector>

#include "adapters/posix/machine_folder.h"

namespace parvex::posix {

/// A command line taken apart as Windows does when it starts a program.
struct CommandLine {
  std::filesystem::path program;       ///< on this system
  std::vector<std::string> arguments;  ///< the program's name as written first

  /// Finds the program: a quoted name as it stands; of an unquoted one with blanks, each blank is tried as its end, the
  /// shortest first. A name without extension is looked for with ".exe" first. A name without folder is looked for in
  /// the current folder, C:\. No such file: an AutomationError (53).
  static CommandLine Parse(std::string_view text, MachineFolder& folder);

  /// The program is that file and no other; the same error. What stands behind its name, or behind the first word of
  /// a line that does not begin with it, are the arguments.
  static CommandLine Of(std::string_view program, std::string_view text, MachineFolder& folder);
};

/// Arguments as C programs see them: blanks part them but within quotes; a quote after an odd number of backslashes is
/// literal and halves them; two quotes within quotes are one; other backslashes stand for themselves.
std::vector<std::string> SplitArguments(std::string_view text);

}  // namespace parvex::posix
