#pragma once

#include <memory>
#include <string>

#include "platform/platform.h"
#include "platform/xml.h"

namespace parvex {

/// What one LegacyORLAPull instance holds of the legacy application for as long as it lives. Handlers get it with every
/// command; nothing else is carried from one command to the next.
class LegacyLink {
 public:
  /// Creates the message router; its AutomationError when it cannot be created.
  explicit LegacyLink(const Platform& platform);

  const Platform platform;
  const std::unique_ptr<MessageRouter> router;

  /// Sends the request to the router. On true `answer` holds the router's answer.
  bool SendRequestMessage(const std::string& request, std::string& answer) const;
};

/// Sends a command document to the router and acknowledges: the success envelope when the router carried it out, the
/// failed reply otherwise. The router's answer is dropped.
xml::Document ForwardAndAcknowledge(const LegacyLink& link, const xml::Document& request);

}  // namespace parvex
