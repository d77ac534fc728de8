#pragma once

#include "seams/message_router.h"

namespace parvex::windows {

/// The message router that the legacy application registers. Its class and the interface through which it is held are
/// those of the build (PARVEX_ROUTER_CLSID, PARVEX_ROUTER_IID).
class SystemMessageRouters : public MessageRouters {
 public:
  std::unique_ptr<MessageRouter> Create() override;
};

}  // namespace parvex::windows
