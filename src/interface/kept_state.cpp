#include "interface/kept_state.h"

#include <algorithm>
#include <cstdint>
#include <limits>
#include <span>
#include <string_view>
#include <utility>
#include <vector>

#include "interface/command_table.h"
#include "legacy_env/thread_state.h"

namespace parvex {
namespace {

using recording::Json;

const Json& Member(const Json& object, const char* key) {
  static const Json kNothing;
  const auto member = object.is_object() ? object.find(key) : object.end();
  return object.is_object() && member != object.end() ? *member : kNothing;
}

std::string Text(const Json& object, const char* key) {
  const Json& text = Member(object, key);
  return text.is_string() ? text.get<std::string>() : std::string();
}

template <typename Number>
Number NumberOf(const Json& object, const char* key) {
  const Json& number = Member(object, key);
  if (!number.is_number_integer()) {
    return 0;
  }
  const auto wide = number.get<std::int64_t>();
  return wide < 0 || wide > std::numeric_limits<Number>::max() ? 0 : static_cast<Number>(wide);
}

// The name as the table has it, which lives as long as the program.
std::string_view NameInTables(const std::string& command) {
  for (const std::span<const CommandEntry> table : {PullCommands(), PullNgorlaCommands()}) {
    const auto entry = std::ranges::find(table, command, &CommandEntry::name);
    if (entry != table.end()) {
      return entry->name;
    }
  }
  return {};
}

}  // namespace

Json ThreadFacts() {
  const ThreadState& state = ThisThread();
  Json facts = {{"binPath", state.binPath},
                {"dataRoot", state.dataRoot},
                {"unstoredTagCount", state.unstoredTagCount},
                {"iniTarget", nullptr},
                {"waits", state.holdsHandOver}};
  if (state.iniTarget) {
    facts["iniTarget"] = {{"section", state.iniTarget->section}, {"fileName", state.iniTarget->fileName}};
  }
  return facts;
}

// Names of tags are kept with a NUL between group and name; here each is a pair.
Json InstanceFacts(const LegacyLink& link) {
  std::vector<std::string> taken(link.tagNames.taken.begin(), link.tagNames.taken.end());
  std::sort(taken.begin(), taken.end());
  Json names = Json::array();
  for (const std::string& name : taken) {
    const std::size_t end = std::min(name.find('\0'), name.size());
    names.push_back(Json::array({name.substr(0, end), name.substr(std::min(end + 1, name.size()))}));
  }
  return {{"reportServer", link.reportServer != nullptr ? Json(link.reportServer->Name()) : Json(nullptr)},
          {"driving", std::string(link.driving)},
          {"tagNames", {{"counter", link.tagNames.counter}, {"taken", std::move(names)}}}};
}

void PutBackThread(const Json& facts) {
  ForgetThisThread();
  ThreadState& state = ThisThread();
  state.binPath = Text(facts, "binPath");
  state.dataRoot = Text(facts, "dataRoot");
  state.unstoredTagCount = NumberOf<std::uint32_t>(facts, "unstoredTagCount");
  state.holdsHandOver = Member(facts, "waits") == true;
  if (const Json& target = Member(facts, "iniTarget"); target.is_object()) {
    state.iniTarget = {Text(target, "section"), Text(target, "fileName")};
  }
}

void PutBackInstance(LegacyLink& link, const Json& facts,
                     const std::function<automation::ObjectRef(const std::string& name)>& object) {
  if (const std::string server = Text(facts, "reportServer"); !server.empty()) {
    link.reportServer = object(server);
  }
  link.driving = NameInTables(Text(facts, "driving"));
  const Json& names = Member(facts, "tagNames");
  link.tagNames.counter = NumberOf<std::int32_t>(names, "counter");
  for (const Json& pair : Member(names, "taken")) {
    if (pair.is_array() && pair.size() == 2 && pair[0].is_string() && pair[1].is_string()) {
      link.tagNames.taken.insert(pair[0].get<std::string>() + '\0' + pair[1].get<std::string>());
    }
  }
}

}  // namespace parvex
