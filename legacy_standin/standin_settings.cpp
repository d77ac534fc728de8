#include "legacy_standin/standin_settings.h"

#include <algorithm>
#include <fstream>
#include <iterator>

#include "legacy_standin/json_members.h"
#include "platform/automation_error.h"

namespace parvex::standin {
namespace {

constexpr std::string_view kReportMembers[] = {"Reset",      "action",    "ClientID",   "command",
                                               "OutputType", "Project",   "ProjectID",  "OutputUnits",
                                               "AddTag",     "AddReport", "MakeReport", "SendRequest"};

std::optional<int> TakeExitCode(JsonMembers& members) {
  const Json value = members.Take("exitCode");
  if (value.is_null()) {
    return std::nullopt;
  }
  if (!value.is_number_integer() || value < 0 || value > 255) {
    members.Refuse(members.PlaceOf("exitCode"), "a whole number from 0 to 255", value);
  }
  return value.get<int>();
}

std::vector<std::string> TakeCommandNames(JsonMembers& members, const std::string& key) {
  std::vector<std::string> names;
  for (const Json& item : members.TakeList(key)) {
    if (!item.is_string()) {
      members.Refuse(members.PlaceOf(key), "a list of command names", item);
    }
    names.push_back(item.get<std::string>());
  }
  return names;
}

std::string TakeReportMember(JsonMembers& members, const std::string& key) {
  const std::string member = members.TakeText(key);
  const bool known =
      std::find(std::begin(kReportMembers), std::end(kReportMembers), member) != std::end(kReportMembers);
  if (!member.empty() && !known) {
    members.Refuse(members.PlaceOf(key), "a member of the report server or the schedule request", member);
  }
  return member;
}

}  // namespace

StandinSettings ParseStandinSettings(std::string_view json, std::string_view fileName) {
  StandinSettings settings;
  JsonMembers all(std::string(fileName), "", ParseJson(json, fileName));

  JsonMembers workflow = all.TakeObject("workflow");
  settings.workflow.cancel = workflow.TakeFlag("cancel", false);
  settings.workflow.exitCode = TakeExitCode(workflow);
  settings.workflow.writeNothing = workflow.TakeFlag("writeNothing", false);
  workflow.Finish();

  JsonMembers router = all.TakeObject("router");
  settings.router.refuse = TakeCommandNames(router, "refuse");
  router.Finish();

  all.TakeObject("builder");

  JsonMembers reportServer = all.TakeObject("reportServer");
  settings.reportServer.missing = reportServer.TakeFlag("missing", false);
  settings.reportServer.failAt = TakeReportMember(reportServer, "failAt");
  settings.reportServer.makeReport = reportServer.TakeFlag("makeReport", true);
  reportServer.Finish();

  all.Finish();
  return settings;
}

StandinSettings ReadStandinSettings(const std::filesystem::path& machineFolder) {
  const std::filesystem::path path = machineFolder / "standin.json";
  if (!std::filesystem::exists(path)) {
    return {};
  }
  std::ifstream file(path, std::ios::binary);
  if (!file || !std::filesystem::is_regular_file(path)) {
    throw MakeRuntimeError(RuntimeError::PathFileAccess, "cannot read " + path.string());
  }
  return ParseStandinSettings(std::string(std::istreambuf_iterator<char>(file), {}), path.string());
}

}  // namespace parvex::standin
