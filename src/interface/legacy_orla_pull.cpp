#include "interface/legacy_orla_pull.h"

#include <algorithm>
#include <span>

#include "interface/command_table.h"
#include "protocol/command_document.h"
#include "protocol/reply_envelope.h"

namespace parvex {
namespace {

xml::Document Dispatch(std::span<const CommandEntry> commands, LegacyLink& link, const xml::Document& command) {
  const auto entry = std::ranges::find(commands, GetCommandName(command), &CommandEntry::name);
  return entry == commands.end() ? MakeFailedReply() : entry->handler(link, command);
}

}  // namespace

LegacyORLAPull::LegacyORLAPull(const Platform& platform) : link_(platform) {}

xml::Document LegacyORLAPull::Pull(const xml::Document& command) { return Dispatch(PullCommands(), link_, command); }

std::string LegacyORLAPull::PullNGORLA(std::string_view commandXml) {
  const xml::Document reply = Dispatch(PullNgorlaCommands(), link_, xml::Document::Parse(commandXml));
  return reply ? reply.Xml() : std::string();
}

}  // namespace parvex
