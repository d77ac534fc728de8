#pragma once

#include <CLI/CLI.hpp>
#include <string>
#include <vector>

namespace parvex::cli {

/// What a command of the program takes, named by its words; of the program itself when there are none. A UsageError
/// for a command that does not exist.
std::string HelpAbout(const CLI::App& program, const std::vector<std::string>& words);

/// What is wrong with a command line, for people.
struct Misuse {
  std::string text;
  std::string help;  ///< the command line that tells how it is done: "parvex export --help"
};

/// Looks at arguments that the parser refused for `reason`. A misspelt command or option is told first, with what is
/// likely to be meant.
Misuse ExplainMisuse(const CLI::App& program, const std::vector<std::string>& arguments, const std::string& reason);

}  // namespace parvex::cli
