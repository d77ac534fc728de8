#include "recording/recording.h"

#include <algorithm>
#include <utility>

#include "formats/text/encoded_text.h"
#include "formats/text/letter_case.h"
#include "recording/case_layout.h"
#include "recording/hand_over_folders.h"
#include "recording/old_cases.h"
#include "recording/quietly.h"
#include "recording/registry_text.h"
#include "seams/automation_error.h"
#include "version.h"

namespace parvex::recording {
namespace {

// The value by which the legacy application's programs find each other's files.
constexpr std::string_view kApplicationKey = "SOFTWARE\\Korvane\\KDQ47";

Json FactsOf(HostSystem& system, const Json& machineFacts, const CallStart& start) {
  const HostSystem::Facts program = system.ThisProgram();
  return {{"format", kFormat},
          {"product", "Parvex"},
          {"version", PARVEX_VERSION},
          {"platform", program.platform},
          {"bitness", program.bitness},
          {"codePage", program.codePage},
          {"program", program.program},
          {"processId", program.processId},
          {"threadId", system.ThreadId()},
          {"machine", machineFacts},
          {"entryPoint", start.entryPoint},
          {"command", start.command},
          {"thread", start.thread},
          {"instance", start.instance},
          {"started", system.UniversalTime()},
          {"outcome", "unfinished"}};
}

}  // namespace

Recording::Recording(HostSystem& system, const Platform& machine, const Settings& settings, const Json& machineFacts,
                     const CallStart& start)
    : system_(system),
      settings_(settings),
      writer_((system.CreateFolders(settings.folder), system), settings.folder, start.command,
              std::min(settings.megabytes, kLargestFiles / kMegabyte) * kMegabyte),
      files_(writer_, *machine.files),
      began_(system.Microseconds()) {
  writer_.KeepMember(kCommand, start.document);
  writer_.Flush();
  facts_ = FactsOf(system, machineFacts, start);
  writer_.WriteMember(kFacts, facts_.dump(-1, ' ', false, Json::error_handler_t::replace));
  Quietly(writer_, "BinPath", [&] {
    if (const auto binPath = machine.registry->LocalMachineString(kApplicationKey, "BinPath")) {
      NoteRegistryValue(kApplicationKey, "BinPath", *binPath);
      temporaryFolders_ = HandOverFolders(*binPath);
    }
  });
}

void Recording::NoteRegistryValue(std::string_view key, std::string_view valueName, const std::string& text) noexcept {
  Quietly(writer_, valueName, [&] {
    const std::string plainKey(key.substr(0, key.find_last_not_of('\\') + 1));
    registry_.try_emplace({FoldName(plainKey), FoldName(valueName)}, Value{plainKey, std::string(valueName), text});
  });
}

void Recording::NoteNested(const std::string& name) noexcept {
  Quietly(writer_, name, [&] { writer_.Note({{"kind", "nested"}, {"case", name}}); });
}

void Recording::TakeReply(std::string_view piece) noexcept {
  if (!std::exchange(takesReply_, true)) {
    writer_.BeginMember(kReply);
  }
  writer_.AppendToMember(piece);
}

void Recording::End(const CallEnd& end) noexcept {
  if (takesReply_) {
    writer_.EndMember();
  } else if (end.document) {
    writer_.KeepMember(kReply, *end.document);
  }
  Close(end.outcome == CallEnd::Outcome::Reply ? "reply" : "failure");
}

void Recording::EndInError(const AutomationError& error) noexcept {
  Quietly(writer_, "error", [&] { facts_["error"] = journal::ErrorJson(error); });
  Close("error");
}

void Recording::EndInFailure(std::string_view what) noexcept {
  Quietly(writer_, "error", [&] { facts_["error"] = {{"description", std::string(what)}}; });
  Close("error");
}

void Recording::Close(const char* outcome) noexcept {
  writer_.DropMember("the call ended before it was complete");
  Quietly(writer_, kFacts, [&] {
    facts_["outcome"] = outcome;
    facts_["ended"] = system_.UniversalTime();
    facts_["microseconds"] = system_.Microseconds() - began_;
    if (settings_.onlyFailures && facts_["outcome"] == "reply") {
      writer_.Discard();
      return;
    }
    KeepRegistry();
    facts_["namesOnly"] = files_.Finish();
    facts_["steps"] = writer_.Steps();
    writer_.Finish(facts_);
  });
  RemoveOldCases(system_, settings_);
}

void Recording::KeepRegistry() {
  std::vector<RegistryValue> values;
  for (const auto& [folded, value] : registry_) {
    values.push_back({"HKEY_LOCAL_MACHINE\\" + value.key, value.name, value.text});
  }
  writer_.Keep(std::string(kMachine) + "registry.reg", RegistryBytes(values));
}

}  // namespace parvex::recording
