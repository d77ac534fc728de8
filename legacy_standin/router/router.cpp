#include "legacy_standin/router/router.h"

#include <algorithm>

#include "seams/automation_error.h"

namespace parvex::standin {
namespace {

std::string CarryOut(const Application& application, const RequestTable& requests, const std::string& text) {
  const xml::Document request = xml::Document::Parse(text);
  if (request.IsEmpty()) {
    RefuseRequest("the request is no XML document: " + request.ParseError());
  }
  const xml::Node nameNode = request.First("/COMMAND/NAME");
  if (!nameNode) {
    RefuseRequest("the request has no COMMAND/NAME");
  }
  const std::string name = nameNode.Text();
  const auto entry = requests.find(name);
  if (entry == requests.end()) {
    RefuseRequest("unknown request \"" + name + "\"");
  }
  const std::vector<std::string>& refused = application.settings.router.refuse;
  if (std::find(refused.begin(), refused.end(), name) != refused.end()) {
    RefuseRequest("told to refuse \"" + name + "\"");
  }
  return entry->second(application, request);
}

}  // namespace

void RefuseRequest(const std::string& reason) { throw MakeRuntimeError(RuntimeError::InvalidCall, reason); }

std::optional<std::string> FindParameter(const xml::Document& request, std::string_view name) {
  const xml::Node command = request.Root();
  for (xml::Node parameter = command.Child("PARAMETER"); parameter; parameter = parameter.Next("PARAMETER")) {
    const xml::Node parameterName = parameter.Child("NAME");
    if (parameterName && parameterName.Text() == name) {
      const xml::Node value = parameter.Child("VALUE");
      return value ? value.Text() : "";
    }
  }
  return std::nullopt;
}

std::string NeedParameter(const xml::Document& request, std::string_view name) {
  const std::optional<std::string> value = FindParameter(request, name);
  if (!value || value->empty()) {
    RefuseRequest("the request has no " + std::string(name));
  }
  return *value;
}

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
