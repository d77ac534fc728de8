#include "legacy_standin/standin.h"

#include <utility>

#include "legacy_standin/project_requests.h"

namespace parvex::standin {
namespace {

RequestTable AllRequests() {
  RequestTable requests = ProjectRequests();
  return requests;
}

}  // namespace

Standin::Standin(Application application) : application_(std::move(application)), requests_(AllRequests()) {}

std::vector<LateBoundClass> Standin::Classes() { return {}; }

std::unique_ptr<MessageRouter> Standin::RouterClass::Create() {
  return std::make_unique<Router>(standin_.application_, standin_.requests_);
}

}  // namespace parvex::standin
