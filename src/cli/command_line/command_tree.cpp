#include "cli/command_line/command_tree.h"

namespace parvex::cli {
namespace {

void AddNodes(const CLI::App& command, const std::string& words, std::vector<CommandPath>& nodes) {
  nodes.push_back({words, &command});
  for (const CLI::App* child : command.get_subcommands(nullptr)) {
    AddNodes(*child, words + " " + child->get_name(), nodes);
  }
}

}  // namespace

std::vector<CommandPath> CommandsOf(const CLI::App& program) {
  std::vector<CommandPath> commands;
  for (const CommandPath& node : NodesOf(program)) {
    if (node.command->get_subcommands(nullptr).empty()) {
      commands.push_back(node);
    }
  }
  return commands;
}

std::vector<CommandPath> NodesOf(const CLI::App& program) {
  std::vector<CommandPath> nodes;
  AddNodes(program, "", nodes);
  return nodes;
}

std::vector<const CLI::Option*> OptionsOf(const CLI::App& command) { return command.get_options(nullptr); }

std::string PositionalName(const CLI::Option& option) {
  return option.get_positional() ? option.get_name(true, false) : std::string();
}

bool TakesValue(const CLI::Option& option) { return option.get_items_expected_max() > 0; }

}  // namespace parvex::cli
