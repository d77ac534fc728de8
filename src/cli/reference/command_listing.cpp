#include "cli/reference/command_listing.h"

#include <cstddef>

namespace parvex::cli {

std::string ListCommands(std::span<const CommandEntry> commands) {
  constexpr std::size_t kNameWidth = 22;
  std::string text;
  for (const CommandEntry& command : commands) {
    text.append("  ").append(command.name).append(kNameWidth - command.name.size(), ' ').append(command.summary) +=
        '\n';
  }
  return text;
}

std::string ListEntryPoints() {
  return "pull (Pull)\n" + ListCommands(PullCommands()) + "\npull-ngorla (PullNGORLA)\n" +
         ListCommands(PullNgorlaCommands());
}

}  // namespace parvex::cli
