#include "legacy_standin/standin.h"

#include <memory>
#include <utility>

#include "legacy_standin/builder/builder.h"
#include "legacy_standin/reports/report_server.h"
#include "legacy_standin/reports/schedule_request.h"
#include "legacy_standin/router/project_requests.h"
#include "legacy_standin/router/tag_requests.h"

namespace parvex::standin {
namespace {

RequestTable AllRequests() {
  RequestTable requests = ProjectRequests();
  requests.merge(TagRequests());
  return requests;
}

template <typename Component>
LateBoundClass MakeClass(const char* programmaticId, const Application& application) {
  return {programmaticId, [&application] { return std::make_shared<Component>(application); }};
}

}  // namespace

Standin::Standin(Application application) : application_(std::move(application)), requests_(AllRequests()) {}

std::vector<LateBoundClass> Standin::Classes() {
  std::vector<LateBoundClass> classes;
  if (!application_.settings.builder.missing) {
    classes.push_back(MakeClass<Builder>(kBuilderClass, application_));
  }
  if (!application_.settings.reportServer.missing) {
    classes.push_back(MakeClass<ReportServer>(kReportServerClass, application_));
    classes.push_back(MakeClass<ScheduleRequest>(kScheduleRequestClass, application_));
  }
  return classes;
}

std::unique_ptr<MessageRouter> Standin::RouterClass::Create() {
  return std::make_unique<Router>(standin_.application_, standin_.requests_);
}

}  // namespace parvex::standin
