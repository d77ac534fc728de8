#pragma once

#include <cstdint>
#include <memory>
#include <string>
#include <string_view>
#include <unordered_set>

#include "seams/platform.h"
#include "seams/xml.h"

namespace parvex {

/// The tags that new names must not clash with. Filled by the first command that needs it and never again, whatever
/// project later commands ask about; the counter doubles as the mark that it is filled.
struct TagNameCache {
  std::int32_t counter = 0;
  /// Product data set group and name of every tag, with a NUL between.
  std::unordered_set<std::string> taken;
};

/// What one LegacyORLAPull instance holds of the legacy application for as long as it lives. Handlers get it with every
/// command; nothing else is carried from one command to the next.
class LegacyLink {
 public:
  /// Creates the message router; its AutomationError when it cannot be created.
  explicit LegacyLink(const Platform& platform);

  /// The machine; it and the router are changed once at most, for others that tell a recording of all that is asked.
  Platform platform;
  std::unique_ptr<MessageRouter> router;

  /// The instance itself as an automation object, which the builder is told of; null where a face offers none.
  automation::ObjectRef consumer;
  /// The command that drives the builder or the report server at this moment; empty when none does. They take no second
  /// one beside it: a host's message that arrives while the first waits may carry one.
  std::string_view driving;
  /// The builder, held only while a command drives it.
  automation::ObjectRef builder;
  /// The report server, kept once a report command has created it; the builder commands drop it.
  automation::ObjectRef reportServer;
  TagNameCache tagNames;

  /// Sends the request to the router. On true `answer` holds the router's answer.
  bool SendRequestMessage(const std::string& request, std::string& answer) const;
};

/// Sends a command document to the router and acknowledges: the success envelope when the router carried it out, the
/// failed reply otherwise. The router's answer is dropped.
xml::Document ForwardAndAcknowledge(const LegacyLink& link, const xml::Document& request);

}  // namespace parvex
