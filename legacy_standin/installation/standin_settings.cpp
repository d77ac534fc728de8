#include "legacy_standin/installation/standin_settings.h"

#include <algorithm>
#include <fstream>
#include <span>

#include "legacy_standin/installation/json_members.h"
#include "seams/automation_error.h"

namespace parvex::standin {
namespace {

constexpr std::string_view kReportMembers[] = {"Reset",      "action",    "ClientID",   "command",
                                               "OutputType", "Project",   "ProjectID",  "OutputUnits",
                                               "AddTag",     "AddReport", "MakeReport", "SendRequest"};

constexpr std::string_view kBuilderMembers[] = {"standalone",    "View",        "UILoaded", "Framework",
                                                "ServiceBroker", "CallService", "Shutdown"};

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

std::string TakeMember(JsonMembers& members, const std::string& key, std::span<const std::string_view> known,
                       const char* wanted) {
  const std::string member = members.TakeText(key);
  if (!member.empty() && std::find(known.begin(), known.end(), member) == known.end()) {
    members.Refuse(members.PlaceOf(key), wanted, member);
  }
  return member;
}

int TakeCount(JsonMembers& members, const std::string& key, int fallback) {
  const Json value = members.Take(key);
  if (!value.is_null() && (!value.is_number_integer() || value < 0 || value > 1'000'000)) {
    members.Refuse(members.PlaceOf(key), "a whole number from 0 to 1000000", value);
  }
  return value.is_null() ? fallback : value.get<int>();
}

// Which of its two names a setting has here. Both at once are refused: one of them would go unnoticed.
std::string NameGiven(JsonMembers& members, const std::string& name, const std::string& other) {
  if (!members.Has(other)) {
    return name;
  }
  if (members.Has(name)) {
    members.Refuse(members.PlaceOf(name), "left out beside " + members.PlaceOf(other), members.Take(name));
  }
  return other;
}

StandinSettings::Builder TakeBuilder(JsonMembers builder) {
  StandinSettings::Builder settings;
  settings.missing = builder.TakeFlag("missing", false);
  settings.cancelled = builder.TakeFlag(NameGiven(builder, "cancelled", "cancel"), false);
  settings.failAt = TakeMember(builder, "failAt", kBuilderMembers, "a member of the builder");
  settings.polls = TakeCount(builder, NameGiven(builder, "polls", "slowPolls"), settings.polls);
  builder.Finish();
  return settings;
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

  settings.builder = TakeBuilder(all.TakeObject("builder"));

  JsonMembers reportServer = all.TakeObject("reportServer");
  settings.reportServer.missing = reportServer.TakeFlag("missing", false);
  settings.reportServer.failAt =
      TakeMember(reportServer, "failAt", kReportMembers, "a member of the report server or the schedule request");
  settings.reportServer.makeReport = reportServer.TakeFlag("makeReport", true);
  reportServer.Finish();

  all.Finish();
  return settings;
}

StandinSettings ReadStandinSettings(const std::filesystem::path& machineFolder) {
  const std::filesystem::path path = machineFolder / kSettingsFile;
  if (!std::filesystem::exists(path)) {
    return {};
  }
  // A pipe would be waited for, and a device may have no end.
  std::ifstream file;
  if (std::filesystem::is_regular_file(path)) {
    file.open(path, std::ios::binary);
  }
  if (!file.is_open()) {
    throw MakeRuntimeError(RuntimeError::PathFileAccess, "cannot read " + path.string());
  }
  std::string json(kLongestJsonFile + 1, '\0');  // one byte more than is parsed at most
  file.read(json.data(), static_cast<std::streamsize>(json.size()));
  json.resize(static_cast<std::size_t>(file.gcount()));
  return ParseStandinSettings(json, path.string());
}

}  // namespace parvex::standin
