#pragma once

#include "cli/host/host.h"
#include "recording/recording_settings.h"
#include "seams/host_system.h"
#include "seams/own_settings.h"
#include "seams/platform.h"

namespace parvex::cli {

/// What is examined. What it refers to outlives it.
struct Patient {
  const parvex::Platform& platform;
  OwnSettings& settings;
  HostSystem& system;
  MachineLook& look;
  HostFacts facts;
  std::string recordingAsked;       ///< the program's own option
  bool hasRecordedAnswers = false;  ///< the router's answers come from a journal
};

}  // namespace parvex::cli
