#pragma once

#include <functional>
#include <string>

#include "cli/doctor/told.h"

namespace parvex::cli {

/// What was found out about one thing that commands need.
struct Finding {
  enum class State {
    Ok,
    Warning,   ///< works, but somebody should look at it
    Failure,   ///< some commands cannot work like this
    Unchecked  ///< could not be looked at because of an earlier failure
  };
  std::string name;
  State state = State::Ok;
  Told detail = {};          ///< what was found
  std::string hint = {};     ///< what can be done; empty where nothing has to be
  std::string command = {};  ///< that does it, for the command prompt or shell of this system; empty where none does
};

/// What is to be done about something.
struct Cure {
  std::string hint;
  std::string command = {};
};

/// What a check has found that did not throw. `cure` takes the place of the check's own.
struct Found {
  Told detail;
  Finding::State state = Finding::State::Ok;
  Cure cure = {};
};

/// A check that throws has failed for the reason that the error gives; the cure goes with everything that is not in
/// order.
Finding Check(const std::string& name, const Cure& cure, const std::function<Found()>& check);

}  // namespace parvex::cli
