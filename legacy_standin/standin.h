#pragma once

#include <memory>
#include <vector>

#include "legacy_standin/installation/application.h"
#include "legacy_standin/late_bound/late_bound_class.h"
#include "legacy_standin/router/router.h"
#include "seams/message_router.h"

namespace parvex::standin {

/// The components of the substitute legacy application on one machine.
class Standin {
 public:
  explicit Standin(Application application);
  Standin(const Standin&) = delete;
  Standin& operator=(const Standin&) = delete;

  /// Its message router.
  MessageRouters& Routers() { return routers_; }
  /// Its other components. The objects must not outlive this.
  std::vector<LateBoundClass> Classes();

 private:
  class RouterClass : public MessageRouters {
   public:
    explicit RouterClass(const Standin& standin) : standin_(standin) {}
    std::unique_ptr<MessageRouter> Create() override;

   private:
    const Standin& standin_;
  };

  const Application application_;
  const RequestTable requests_;
  RouterClass routers_{*this};
};

}  // namespace parvex::standin
