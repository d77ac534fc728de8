#include "legacy_standin/router.h"

#include <algorithm>

#include "platform/automation_error.h"

namespace parvex::standin {
namespace {

[[noreturn]] void Refuse(const std::string& reason) { throw MakeRuntimeError(RuntimeError::InvalidCall, reason); }

std::string CarryOut(const Application& application, const RequestTable& requests, const std::string& text) {
  const xml::Document request = xml::Document::Parse(text);
  if (request.IsEmpty()) {
    Refuse("the request is no XML document: " + request.ParseError());
  }
  const xml::Node nameNode = request.First("/COMMAND/NAME");
  if (!nameNode) {
    Refuse("the request has no COMMAND/NAME");
  }
  const std::string name = nameNode.Text();
  const auto entry = requests.find(name);
  if (entry == requests.end()) {
    Refuse("unknown request \"" + name + "\"");
  }
  const std::vector<std::string>& refused = application.settings.router.refuse;
  if (std::find(refused.begin(), refused.end(), name) != refused.end()) {
    Refuse("told to refuse \"" + name + "\"");
  }
  return entry->second(application, request);
}

}  // namespace

bool Router::SendRequestMessage(const std::string& request, std::string& response) {
  try {
    response = CarryOut(application_, requests_, request);
    return true;
  } catch (const AutomationError& error) {
    response = error.Description();
    return false;
  }
}

}  // namespace parvex::standin
