#include "legacy_standin/standin.h"

#include "legacy_standin/standin_settings.h"

namespace parvex::standin {
namespace {

class Router : public MessageRouter {
 public:
  bool SendRequestMessage(const std::string&, std::string& response) override {
    response.clear();
    return false;
  }
};

class RouterClass : public MessageRouters {
 public:
  std::unique_ptr<MessageRouter> Create() override { return std::make_unique<Router>(); }
};

}  // namespace

struct Standin::Parts {
  StandinSettings settings;
  RouterClass routers;
};

Standin::Standin(posix::Machine& machine) : parts_(new Parts{ReadStandinSettings(machine.Root()), {}}) {}

Standin::~Standin() = default;

MessageRouters& Standin::Routers() { return parts_->routers; }

}  // namespace parvex::standin
