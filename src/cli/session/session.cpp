#include "cli/session/session.h"

#include <cerrno>
#include <cstring>
#include <exception>
#include <string_view>

#include "cli/host/exit_status.h"
#include "cli/terminal/printable.h"
#include "cli/terminal/standard_streams.h"
#include "formats/text/text.h"
#include "seams/automation_error.h"

namespace parvex::cli {

Session::Session(const SessionOptions& options)
    : journalName_(options.journal), replayName_(options.replay), system_(ThisSystem()) {
  try {
    if (!options.replay.empty()) {
      replay_.emplace(ReadInput(options.replay), options.replay);
    }
    host_.emplace(options.machine);
  } catch (const AutomationError& error) {
    throw UsageError(error.Description());
  }
  recorder_.emplace(*system_, &host_->Settings(), options.record);
  if (!journalName_.empty()) {
    journalFile_.open(PathOf(journalName_), std::ios::binary);
    if (!journalFile_) {
      throw UsageError("cannot write " + journalName_ + ": " + std::strerror(errno));
    }
    journalled_.emplace(Unjournalled(), journalFile_);
  }
}

Session::~Session() {
  try {
    TellUnusedLines();
  } catch (const std::exception&) {  // no memory for a remark
  }
}

parvex::Platform Session::Platform() { return journalled_ ? journalled_->Platform() : Unjournalled(); }

parvex::Platform Session::Unjournalled() {
  parvex::Platform machine = host_->Platform();
  if (replay_) {
    machine.messageRouters = &*replay_;
  }
  machine.progress = progress_.IsShown() ? &progress_ : nullptr;
  return machine;
}

void Session::Close() {
  journalled_.reset();
  if (!journalFile_) {
    throw MakeRuntimeError(RuntimeError::PathFileAccess, "the journal " + journalName_ + " could not be written");
  }
}

void Session::TellUnusedLines() const {
  const auto unused = replay_ ? replay_->Left() : std::nullopt;
  if (!unused) {
    return;
  }
  constexpr std::size_t kLongestRequest = 200;
  const std::string request = unused->request.value_or("any request");
  const std::string_view shown = FirstUnits(request, kLongestRequest);
  TellError("nobody asked for " + Counted(unused->count, "router line") + " of " + replayName_ +
            ". The first is line " + std::to_string(unused->lineNumber) + ": " + std::string(shown) +
            (shown.size() < request.size() ? "..." : ""));
}

}  // namespace parvex::cli
