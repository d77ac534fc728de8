#include "cli/commands/reference_command.h"

#include "cli/reference/command_listing.h"
#include "cli/reference/command_text.h"
#include "cli/reference/described_command.h"
#include "cli/reference/schema.h"
#include "cli/terminal/standard_streams.h"

namespace parvex::cli {
namespace {

std::string TextOfReference(const ReferenceOptions& options) {
  if (!options.schema.empty()) {
    return options.schema == "requests" ? RequestSchema() : ReplySchema();
  }
  if (options.command.empty()) {
    if (options.xml) {
      throw UsageError("--xml needs the name of a command");
    }
    return options.json ? AllCommandsAsJson() : ListEntryPoints();
  }
  const DescribedCommand command = FindDescribed(options.command);
  if (command.entry == nullptr) {
    throw UsageError(NoSuchCommand(options.command));
  }
  return options.json ? CommandAsJson(command) : options.xml ? ExampleRequest(command) : CommandAsText(command);
}

}  // namespace

ExitStatus TellCommands(const ReferenceOptions& options) {
  WriteDocument(TextOfReference(options));
  return kReply;
}

}  // namespace parvex::cli
