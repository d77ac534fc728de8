#pragma once

#include <string>
#include <string_view>

#include "protocol/legacy_link.h"
#include "seams/platform.h"
#include "seams/xml.h"

namespace parvex {

/// The one public object: takes a command document, carries it out against the legacy application, answers with a reply
/// document. Belongs to one thread. Run-time errors are not trapped: they leave the call as an AutomationError.
class LegacyORLAPull {
 public:
  /// Creates the message router; its AutomationError when it cannot be created.
  explicit LegacyORLAPull(const Platform& platform);

  /// The instance as an automation object of its face, which the builder is told of; none at first.
  void SetConsumer(automation::ObjectRef consumer) { link_.consumer = std::move(consumer); }

  /// Carries out one of PullCommands(). The command document is changed in place where the handler rewrites it. The
  /// reply is the handler's document itself; a null document where the handler answers with none.
  xml::Document Pull(const xml::Document& command);

  /// Carries out one of PullNgorlaCommands(). A text that does not parse is an empty command document, and so a missing
  /// command name ("object not set").
  std::string PullNGORLA(std::string_view commandXml);

 private:
  LegacyLink link_;
};

}  // namespace parvex
