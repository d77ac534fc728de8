#pragma once

#include "seams/message_router.h"
#include "seams/own_settings.h"

namespace parvex::windows {

/// The message router that the legacy application registers. Its class and the interface through which it is held are
/// read from the registry whenever one is created (formats/router_ids).
class SystemMessageRouters : public MessageRouters {
 public:
  explicit SystemMessageRouters(OwnSettings& settings) : settings_(settings) {}
  /// A failure (429) names the identifier that was tried, and where it comes from.
  std::unique_ptr<MessageRouter> Create() override;

 private:
  OwnSettings& settings_;
};

}  // namespace parvex::windows
