#include "cli/commands/recording_command.h"

#include <filesystem>
#include <memory>
#include <optional>

#include "cli/host/host.h"
#include "cli/terminal/printable.h"
#include "cli/terminal/standard_streams.h"
#include "recording/recording_settings.h"

namespace parvex::cli {
namespace {

std::string Status(Session& session, const std::string& asked) {
  const std::unique_ptr<HostSystem> system = ThisSystem();
  const auto settings = recording::SettingsInForce(*system, &session.Settings(), asked);
  if (!settings) {
    return "Recording is off.\n";
  }
  return "Recording is on, into " + Printable(settings->folder) + " (" + settings->place + ").\n" + "Up to " +
         std::to_string(settings->keep) + " cases and " + std::to_string(settings->megabytes) + " MB are kept" +
         (settings->onlyFailures ? ", of calls that failed only" : "") + ".\n";
}

std::string Absolute(const std::string& folder) {
  const std::u8string absolute = std::filesystem::absolute(PathOf(folder)).u8string();
  return std::string(absolute.begin(), absolute.end());
}

// How it stands now, when what was set is saved.
ExitStatus Tell(Session& session, const SessionOptions& sessionOptions) {
  const std::string status = Status(session, sessionOptions.record);
  session.Close();
  WriteText(status);
  return kReply;
}

}  // namespace

ExitStatus TurnRecordingOn(const SessionOptions& sessionOptions, const std::string& folder) {
  Session session(sessionOptions);
  const std::unique_ptr<HostSystem> system = ThisSystem();
  const std::string named = folder.empty() ? system->DefaultFolder() : Absolute(folder);
  system->CreateFolders(named);
  recording::SaveFolder(session.Settings(), named);
  return Tell(session, sessionOptions);
}

ExitStatus TurnRecordingOff(const SessionOptions& sessionOptions) {
  Session session(sessionOptions);
  recording::SaveFolder(session.Settings(), "");
  return Tell(session, sessionOptions);
}

ExitStatus TellRecording(const SessionOptions& sessionOptions) {
  Session session(sessionOptions);
  return Tell(session, sessionOptions);
}

}  // namespace parvex::cli
