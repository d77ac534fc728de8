#pragma once

#include <string>

#include "cli/host/exit_status.h"
#include "cli/session/session.h"

namespace parvex::cli {

/// Turns recording on for the current user, into a folder of the system or, with none, a folder of his own.
ExitStatus TurnRecordingOn(const SessionOptions& sessionOptions, const std::string& folder);
/// Turns it off for him, whatever the machine says.
ExitStatus TurnRecordingOff(const SessionOptions& sessionOptions);
/// Says whether calls are recorded, where to, and who said so.
ExitStatus TellRecording(const SessionOptions& sessionOptions);

}  // namespace parvex::cli
