#include "recording/recorder.h"

#include <optional>

#include "formats/router_ids/router_ids.h"
#include "seams/automation_error.h"

namespace parvex::recording {

std::shared_ptr<Recording> Recorder::Begin(const Platform& machine,
                                           const std::function<CallStart()>& describe) noexcept {
  try {
    const std::optional<Settings> settings = SettingsInForce(system_, settings_, folder_);
    if (!settings) {
      return nullptr;
    }
    return std::make_shared<Recording>(system_, machine, *settings, MachineFacts(), describe());
  } catch (...) {
    return nullptr;  // the call is more important than its recording
  }
}

// What the machine offers to whoever is logged in.
Json Recorder::MachineFacts() {
  const HostSystem::Facts program = system_.ThisProgram();
  Json facts = {{"xml", program.xmlEngine}, {"databases", program.databaseEngine}};
  if (settings_ == nullptr) {
    return facts;
  }
  try {
    const FoundRouterIds found = RouterIdsInForce(*settings_);
    facts["router"] = {{"classId", found.ids.classId}, {"interfaceId", found.ids.interfaceId}, {"place", found.place}};
  } catch (const AutomationError& error) {
    facts["router"] = {{"error", journal::ErrorJson(error)}};
  }
  return facts;
}

}  // namespace parvex::recording
