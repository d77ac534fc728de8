#include "cli/session/session.h"

#include <cerrno>
#include <cstring>

#include "cli/host/exit_status.h"
#include "cli/terminal/standard_streams.h"
#include "seams/automation_error.h"

namespace parvex::cli {

Session::Session(const SessionOptions& options) : journalName_(options.journal), system_(ThisSystem()) {
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

parvex::Platform Session::Platform() { return journalled_ ? journalled_->Platform() : Unjournalled(); }

parvex::Platform Session::Unjournalled() {
  parvex::Platform machine = host_->Platform();
  if (replay_) {
    machine.messageRouters = &*replay_;
  }
  return machine;
}

void Session::Close() {
  journalled_.reset();
  if (!journalFile_) {
    throw MakeRuntimeError(RuntimeError::PathFileAccess, "the journal " + journalName_ + " could not be written");
  }
}

}  // namespace parvex::cli
