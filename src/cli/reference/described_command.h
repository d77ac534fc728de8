#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "interface/command_table.h"

namespace parvex::cli {

/// A command of the protocol with the entry points that serve it.
struct DescribedCommand {
  const CommandEntry* entry;
  bool byPull;
  bool byPullNgorla;

  const CommandReference& Reference() const { return *entry->reference; }
};

/// Every command once: those of Pull in their order, then those that only PullNGORLA serves.
std::vector<DescribedCommand> DescribedCommands();

/// The command of exactly this name; its entry is null when there is none.
DescribedCommand FindDescribed(std::string_view name);

/// "Pull (parvex pull)", "Pull (parvex pull), PullNGORLA (parvex pull-ngorla)"
std::string EntryPointsOf(const DescribedCommand& command);

/// What people are told of a name that no command has: the command that is meant, as far as that can be guessed, and
/// how commands are found.
std::string NoSuchCommand(std::string_view name);

/// What people are told who sent this command through Pull, or else through PullNGORLA, and were answered with the
/// failed reply; empty when that entry point serves it, and when nobody can guess what was meant.
std::string HintAbout(std::string_view name, bool throughPull);

/// A whole command document, filled in with the examples, indented, ended by a line feed.
std::string ExampleRequest(const DescribedCommand& command);

}  // namespace parvex::cli
