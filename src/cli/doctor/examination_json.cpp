#include "cli/doctor/examination_json.h"

#include <nlohmann/json.hpp>

#include "cli/doctor/examination_text.h"
#include "formats/router_ids/router_ids.h"
#include "recording/recording_settings.h"
#include "seams/automation_error.h"
#include "version.h"

namespace parvex::cli {
namespace {

using Json = nlohmann::ordered_json;
using Application = MachineLook::Application;

const char* NameOf(Application application) {
  switch (application) {
    case Application::Installed:
      return "installed";
    case Application::Substitute:
      return "substitute";
    case Application::CopiedFiles:
      return "copied-files";
  }
  return "";
}

Json EngineMembers(const MachineLook::Engine& engine) {
  return {{"name", engine.name}, {"version", engine.version}, {"file", engine.file}};
}

// Null while the identifiers are no use.
Json RouterMembers(const Patient& patient) {
  try {
    const auto [ids, place] = RouterIdsInForce(patient.settings);
    const auto server = patient.look.ServerOf(ids.classId, MachineLook::Programs::OfThisBitness);
    return {{"classId", ids.classId},
            {"interfaceId", ids.interfaceId},
            {"source", place},
            {"file", server ? server->file : ""},
            {"fileVersion", server ? server->version : ""}};
  } catch (const AutomationError&) {
    return nullptr;
  }
}

Json RecordingMembers(const Patient& patient) {
  const auto settings = recording::SettingsInForce(patient.system, &patient.settings, patient.recordingAsked);
  return {{"on", settings.has_value()},
          {"folder", settings ? settings->folder : ""},
          {"source", settings ? settings->place : ""}};
}

Json CheckMembers(const std::vector<Finding>& findings) {
  Json checks = Json::array();
  for (const Finding& finding : findings) {
    checks.push_back({{"name", finding.name},
                      {"state", NameOf(finding.state)},
                      {"detail", finding.detail.Full()},
                      {"hint", finding.hint},
                      {"command", finding.command}});
  }
  return checks;
}

}  // namespace

std::string AsJson(const Patient& patient, const std::vector<Finding>& findings) {
  const Json all = {{"version", PARVEX_VERSION},
                    {"bitness", patient.facts.bitness},
                    {"codePage", std::stoul(patient.facts.codePage)},
                    {"application", NameOf(patient.look.WhoAnswers())},
                    {"xmlParser", EngineMembers(patient.look.XmlParser())},
                    {"databaseEngine", EngineMembers(patient.look.DatabaseEngine())},
                    {"router", RouterMembers(patient)},
                    {"recording", RecordingMembers(patient)},
                    {"checks", CheckMembers(findings)},
                    {"failures", CountOf(findings, Finding::State::Failure)},
                    {"warnings", CountOf(findings, Finding::State::Warning)}};
  return all.dump(2, ' ', false, Json::error_handler_t::replace) + "\n";
}

}  // namespace parvex::cli
