#pragma once

#include <string>
#include <string_view>
#include <vector>

namespace parvex::cli {

/// What is wrong with a command document, and where.
struct LintFinding {
  std::size_t line;    ///< from 1
  std::size_t column;  ///< from 1, in bytes
  std::string kind;    ///< a word for scripts; words are only ever added (docs/program.md has them)
  std::string text;    ///< for people
};

/// The entry point that a command is to be sent through.
enum class EntryPoint { Any, Pull, PullNgorla };

struct LintResult {
  std::string command;      ///< the command's name as it stands; empty when there is none
  std::string entryPoints;  ///< what serves it, for people; empty for a command that is not known
  std::vector<LintFinding> findings;
};

/// Holds a command document against the command tables. Findings are in the order of their places.
LintResult LintCommand(std::string_view bytes, EntryPoint through);

}  // namespace parvex::cli
