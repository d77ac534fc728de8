#include "interface/legacy_orla_pull.h"

#include <algorithm>
#include <memory>
#include <span>

#include "interface/command_table.h"
#include "protocol/command_document.h"
#include "protocol/reply_envelope.h"
#include "seams/automation_error.h"

namespace parvex {
namespace {

/// A builder or report command of an instance, for the time that it runs: the only one.
class Driving {
 public:
  Driving(LegacyLink& link, std::string_view command) : link_(link) {
    if (!link.driving.empty()) {
      throw MakeRuntimeError(RuntimeError::ObjectNotSet,
                             std::string(command) + ": " + std::string(link.driving) +
                                 " is still running and holds the instance's builder and report server");
    }
    link.driving = command;
  }
  ~Driving() { link_.driving = {}; }
  Driving(const Driving&) = delete;
  Driving& operator=(const Driving&) = delete;

 private:
  LegacyLink& link_;
};

/// Holds the link for itself: a message that runs during the command may destroy the instance.
xml::Document Dispatch(std::span<const CommandEntry> commands, std::shared_ptr<LegacyLink> link,
                       const xml::Document& command) {
  const auto entry = std::ranges::find(commands, GetCommandName(command), &CommandEntry::name);
  if (entry == commands.end()) {
    return MakeFailedReply();
  }
  if (!entry->drivesLegacyObjects) {
    return entry->handler(*link, command);
  }
  const Driving driving(*link, entry->name);
  return entry->handler(*link, command);
}

std::string TextOf(const xml::Document& reply) { return reply ? reply.Xml() : std::string(); }

}  // namespace

LegacyORLAPull::LegacyORLAPull(const Platform& platform, recording::Recorder* recorder)
    : instance_(std::make_shared<RecordedLink>(platform)), link_(instance_, &instance_->link), recorder_(recorder) {}

xml::Document LegacyORLAPull::Pull(const xml::Document& command) {
  const std::shared_ptr<RecordedLink> instance = instance_;
  RecordedCall call(*instance, recorder_, "Pull", command, [&] { return command.Bytes(); });
  return call.Carry([&] { return Dispatch(PullCommands(), link_, command); },
                    [](const xml::Document& reply) { return reply; });
}

std::string LegacyORLAPull::PullNGORLA(std::string_view commandXml) {
  const std::shared_ptr<RecordedLink> instance = instance_;
  const xml::Document command = xml::Document::Parse(commandXml);
  RecordedCall call(*instance, recorder_, "PullNGORLA", command, [&] { return std::string(commandXml); });
  return call.Carry([&] { return Dispatch(PullNgorlaCommands(), link_, command); }, TextOf);
}

bool LegacyORLAPull::PullNGORLA(std::string_view commandXml, const std::function<void(std::string_view piece)>& take) {
  const std::shared_ptr<RecordedLink> instance = instance_;
  const xml::Document command = xml::Document::Parse(commandXml);
  RecordedCall call(*instance, recorder_, "PullNGORLA", command, [&] { return std::string(commandXml); });
  const xml::Document reply = call.CarryInPieces([&] { return Dispatch(PullNgorlaCommands(), link_, command); }, take);
  return IsFailedReply(reply);
}

}  // namespace parvex
