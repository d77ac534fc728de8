#pragma once

#include <span>
#include <string_view>

#include "protocol/command_reference.h"
#include "protocol/legacy_link.h"
#include "seams/xml.h"

namespace parvex {

/// Carries one command out and answers with the reply, which may be a null document ("no document").
using CommandHandler = xml::Document (*)(LegacyLink& link, const xml::Document& command);

/// One row of a command table. The tables feed dispatch, `parvex commands`, `parvex lint`, the help text, the schemas
/// and the reference pages.
struct CommandEntry {
  std::string_view name;  ///< compared exactly, letter case included
  CommandHandler handler;
  std::string_view summary;           ///< one line for people
  const CommandReference* reference;  ///< what it takes and gives; never null
  /// Whether it drives the builder or the report server, which an instance does for one command at a time.
  bool drivesLegacyObjects = false;
};

/// The commands that Pull serves, in the order in which names are compared.
std::span<const CommandEntry> PullCommands();
/// The commands that PullNGORLA serves. getHybrisXMLNoUI and RebuildTag are here only, and the project, tag, report and
/// option commands in Pull only: deliberate, the two kinds of front end never shared their commands.
std::span<const CommandEntry> PullNgorlaCommands();

}  // namespace parvex
