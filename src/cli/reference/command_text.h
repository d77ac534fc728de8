#pragma once

#include <string>

#include "cli/reference/described_command.h"

namespace parvex::cli {

/// All that the reference says about a command, for people.
std::string CommandAsText(const DescribedCommand& command);

/// The same as JSON: "name", "summary", "entryPoints", "parameters" ("name", "meaning", "needed", "example"),
/// "otherParameters" ("ignored", "forwarded", "options"), "elements", "request", "runsAfter", "reply" ("elements",
/// "example") and "failures" ("kind", "cause", "text", "number"). Elements have "path", "occurs" ("once", "optional",
/// "any", "some"), "content", "meaning", "attributes" and "values".
std::string CommandAsJson(const DescribedCommand& command);
/// An array of all of them.
std::string AllCommandsAsJson();

}  // namespace parvex::cli
