#pragma once

#include <string>
#include <vector>

namespace parvex::windows {

/// The path of the running program.
std::wstring ProgramPath();

/// Its arguments, without its own name, as UTF-8.
std::vector<std::string> ProgramArguments();

}  // namespace parvex::windows
