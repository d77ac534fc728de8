#pragma once

#include <fstream>
#include <memory>
#include <optional>
#include <string>

#include "cli/host/host.h"
#include "cli/terminal/progress.h"
#include "journal/journalled_platform.h"
#include "journal/replay_routers.h"
#include "recording/recorder.h"
#include "seams/platform.h"

namespace parvex::cli {

/// What can be said about every command that works on a machine.
struct SessionOptions {
  std::string machine;  ///< the machine folder; empty when none was named
  std::string journal;  ///< the file to write the journal to; empty for none
  std::string record;   ///< the folder to record calls into; empty when the user named none
  std::string replay;   ///< the journal to answer router requests from; empty for none
};

/// The machine that the user named, with the journal and the replay that he asked for. On a terminal it tells him what
/// goes on while he waits.
class Session {
 public:
  /// A UsageError for a machine, a journal or a replay that is no use. An earlier journal is replaced only when all the
  /// rest is in order.
  explicit Session(const SessionOptions& options);
  /// Tells on standard error which lines of a replay nobody asked for, however the command ended.
  ~Session();
  Session(const Session&) = delete;
  Session& operator=(const Session&) = delete;

  /// The members live until Close.
  parvex::Platform Platform();
  OwnSettings& Settings() { return host_->Settings(); }
  MachineLook& Look() { return host_->Look(); }
  /// For every LegacyORLAPull of the session.
  recording::Recorder* Recorder() { return &*recorder_; }

  /// Ends the journal; an AutomationError (75) when it could not be written completely.
  void Close();

 private:
  parvex::Platform Unjournalled();

  void TellUnusedLines() const;

  std::string journalName_;
  std::string replayName_;
  ShownProgress progress_;
  std::optional<journal::ReplayRouters> replay_;
  std::optional<Host> host_;
  std::unique_ptr<HostSystem> system_;
  std::optional<recording::Recorder> recorder_;
  std::ofstream journalFile_;
  std::optional<journal::JournalledPlatform> journalled_;
};

}  // namespace parvex::cli
