#pragma once

#include <functional>
#include <map>
#include <optional>
#include <string>
#include <string_view>

#include "legacy_standin/installation/application.h"
#include "seams/message_router.h"
#include "seams/xml.h"

namespace parvex::standin {

/// Carries out one request and gives back the answer's text; refuses it by an AutomationError that says why.
using RequestHandler = std::function<std::string(const Application&, const xml::Document& request)>;
/// By the request's command name.
using RequestTable = std::map<std::string, RequestHandler, std::less<>>;

/// Refuses the request with this reason (5).
[[noreturn]] void RefuseRequest(const std::string& reason);

// What handlers read from a request. As everywhere in the protocol the first of several parameters of a name counts.

/// The parameter's text, nothing when the request has no such parameter.
std::optional<std::string> FindParameter(const xml::Document& request, std::string_view name);
/// The parameter's text; a request without it, or with an empty one, is refused (5).
std::string NeedParameter(const xml::Document& request, std::string_view name);

/// The substitute's message router. A request that it refuses (no command document, a name it does not know or was told
/// to refuse, a handler's AutomationError) is answered with false and the reason as text.
class Router : public MessageRouter {
 public:
  /// Both outlive the router.
  Router(const Application& application, const RequestTable& requests)
      : application_(application), requests_(requests) {}

  bool SendRequestMessage(const std::string& request, std::string& response) override;

 private:
  const Application& application_;
  const RequestTable& requests_;
};

}  // namespace parvex::standin
