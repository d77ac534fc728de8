#pragma once

#include <CLI/CLI.hpp>
#include <string>
#include <vector>

namespace parvex::cli {

// What a command line offers, for those who write it down.

struct CommandPath {
  std::string words;  ///< as typed behind the program's name, a blank before each: " machine create"
  const CLI::App* command;
};

/// The commands that do something, in the order in which they were added.
std::vector<CommandPath> CommandsOf(const CLI::App& program);
/// All of them and the groups that they stand in, the program itself included.
std::vector<CommandPath> NodesOf(const CLI::App& program);

/// The options and arguments of one command.
std::vector<const CLI::Option*> OptionsOf(const CLI::App& command);

/// How an argument without a name of its own is called; empty for an option.
std::string PositionalName(const CLI::Option& option);

bool TakesValue(const CLI::Option& option);

}  // namespace parvex::cli
