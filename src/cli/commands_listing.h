#pragma once

#include <span>
#include <string>

#include "interface/command_table.h"

namespace parvex::cli {

/// One line a command: its name and what it does, with a note where nothing carries it out yet.
std::string ListCommands(std::span<const CommandEntry> commands);

/// Both command tables, each under the name of its entry point.
std::string ListEntryPoints();

}  // namespace parvex::cli
