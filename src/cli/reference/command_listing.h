#pragma once

#include <span>
#include <string>

#include "interface/command_table.h"

namespace parvex::cli {

/// One line a command: its name and what it does.
std::string ListCommands(std::span<const CommandEntry> commands);

/// Both command tables, each under the name of its entry point.
std::string ListEntryPoints();

}  // namespace parvex::cli
