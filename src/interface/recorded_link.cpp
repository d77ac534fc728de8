#include "interface/recorded_link.h"

#include <algorithm>
#include <exception>
#include <utility>
#include <vector>

#include "legacy_env/thread_state.h"
#include "protocol/command_document.h"
#include "protocol/reply_envelope.h"
#include "seams/automation_error.h"

namespace parvex {
namespace {

using recording::Json;

std::string NameOf(const xml::Document& command) {
  try {
    return GetCommandName(command);
  } catch (const AutomationError&) {
    return {};
  }
}

Json ThreadFacts() {
  const ThreadState& state = ThisThread();
  Json facts = {{"binPath", state.binPath},
                {"dataRoot", state.dataRoot},
                {"unstoredTagCount", state.unstoredTagCount},
                {"iniTarget", nullptr}};
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

// From the first recorded call on, the instance asks a machine that tells of it.
void Watch(RecordedLink& instance) {
  if (instance.machine) {
    return;
  }
  recording::RecordedMachine& machine = instance.machine.emplace(instance.outside);
  LegacyLink& link = instance.link;
  link.router = machine.Watched(std::move(link.router));
  link.reportServer = machine.Watched(std::move(link.reportServer));
  link.builder = machine.Watched(std::move(link.builder));
  link.platform = machine.Platform();
}

}  // namespace

RecordedCall::RecordedCall(RecordedLink& instance, recording::Recorder* recorder, const char* entryPoint,
                           const xml::Document& command, const std::function<std::string()>& document) noexcept
    : instance_(instance) {
  if (recorder != nullptr) {
    recording_ = recorder->Begin(instance.outside, [&]() -> recording::CallStart {
      return {entryPoint, NameOf(command), document(), ThreadFacts(), InstanceFacts(instance.link)};
    });
  }
  if (recording_ != nullptr) {
    try {
      Watch(instance);
    } catch (...) {
      recording_ = nullptr;
    }
  }
  if (instance_.machine) {
    std::shared_ptr<recording::Recording>& current = instance_.machine->Current().recording;
    if (current != nullptr && recording_ != nullptr) {
      current->NoteNested(recording_->Writer().Name());
    }
    outer_ = std::exchange(current, recording_);
    isCurrent_ = true;
  }
}

RecordedCall::~RecordedCall() {
  if (isCurrent_) {
    instance_.machine->Current().recording = std::move(outer_);
  }
}

void RecordedCall::Answered(const xml::Document& reply, const std::string& text) noexcept { End(reply, text); }

void RecordedCall::Answered(const xml::Document& reply, const xml::Document&) noexcept {
  std::string bytes;
  try {
    bytes = reply ? reply.Bytes() : std::string();
  } catch (const std::exception& failure) {
    recording_->Writer().Missing("reply.xml", failure.what());
  } catch (...) {
    recording_->Writer().Missing("reply.xml", "unknown failure");
  }
  End(reply, bytes);
}

void RecordedCall::End(const xml::Document& reply, std::string_view text) noexcept {
  recording::CallEnd end;
  try {
    if (reply) {
      end.outcome = IsFailedReply(reply) ? recording::CallEnd::Outcome::Failure : recording::CallEnd::Outcome::Reply;
      end.document = text;
    }
  } catch (...) {
    end.document = text;
  }
  recording_->End(end);
}

}  // namespace parvex
