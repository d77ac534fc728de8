#pragma once

#include <functional>
#include <memory>
#include <string>
#include <string_view>
#include <utility>

#include "interface/kept_state.h"
#include "interface/recorded_link.h"
#include "protocol/legacy_link.h"
#include "recording/recorder.h"
#include "seams/platform.h"
#include "seams/xml.h"

namespace parvex {

/// The one public object: takes a command document, carries it out against the legacy application, answers with a reply
/// document. Belongs to one thread. Run-time errors are not trapped: they leave the call as an AutomationError.
///
/// Calls may nest: while a command waits, the host's own messages run, and one of them may call again. A nested command
/// works as any other and disturbs nothing; but while a builder or report command runs, a nested builder or report
/// command of the same instance is refused with "object not set" (91), since builder and report server serve one at a
/// time. An instance that is destroyed by a message ends when its last call has returned.
class LegacyORLAPull {
 public:
  /// Creates the message router; its AutomationError when it cannot be created. With a recorder, which outlives this,
  /// every call is recorded where that is switched on; calls and their outcomes are the same with and without.
  explicit LegacyORLAPull(const Platform& platform, recording::Recorder* recorder = nullptr);

  /// The instance as an automation object of its face, which the builder is told of; none at first. Gives the former
  /// one.
  automation::ObjectRef SetConsumer(automation::ObjectRef consumer) {
    return std::exchange(link_->consumer, std::move(consumer));
  }

  /// Makes it an instance that has kept this from earlier calls: `instance` of a case (interface/kept_state.h).
  void PutBack(const recording::Json& facts,
               const std::function<automation::ObjectRef(const std::string& name)>& object) {
    PutBackInstance(*link_, facts, object);
  }

  /// Carries out one of PullCommands(). The command document is changed in place where the handler rewrites it. The
  /// reply is the handler's document itself; a null document where the handler answers with none.
  xml::Document Pull(const xml::Document& command);

  /// Carries out one of PullNgorlaCommands(). A text that does not parse is an empty command document, and so a missing
  /// command name ("object not set").
  std::string PullNGORLA(std::string_view commandXml);
  /// The same with the reply handed over in pieces (xml::Document::WriteXml) once it is complete, and whether it is the
  /// failed one. What `take` throws leaves the call.
  bool PullNGORLA(std::string_view commandXml, const std::function<void(std::string_view piece)>& take);

 private:
  std::shared_ptr<RecordedLink> instance_;
  std::shared_ptr<LegacyLink> link_;  // a part of it
  recording::Recorder* recorder_;
};

}  // namespace parvex
