#pragma once

#include <memory>

#include "platform/message_router.h"
#include "platform/posix/machine.h"

namespace parvex::standin {

/// The components of the substitute legacy application, for one machine folder. It reads the folder's standin.json when
/// it is made (an AutomationError when that cannot be understood). The machine outlives it.
class Standin {
 public:
  explicit Standin(posix::Machine& machine);
  ~Standin();
  Standin(const Standin&) = delete;
  Standin& operator=(const Standin&) = delete;

  /// Its message router. It knows no command yet: every request is refused with an empty answer.
  MessageRouters& Routers();

 private:
  struct Parts;
  std::unique_ptr<Parts> parts_;
};

}  // namespace parvex::standin
