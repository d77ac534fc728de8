#pragma once

#include <memory>

#include "replay/network_drive.h"
#include "replay/script.h"
#include "seams/platform.h"

namespace parvex::replay {

/// A machine that a case was laid out as, on which router, late-bound objects, programs and boxes answer from the
/// record. Time does not pass on it. `machine` outlives this, and this whatever came from it.
class AnsweredMachine {
 public:
  AnsweredMachine(const parvex::Platform& machine, std::shared_ptr<Script> script, NetworkDrive network = {});
  ~AnsweredMachine();
  AnsweredMachine(const AnsweredMachine&) = delete;
  AnsweredMachine& operator=(const AnsweredMachine&) = delete;

  parvex::Platform Platform();

 private:
  struct Parts;
  std::unique_ptr<Parts> parts_;
};

}  // namespace parvex::replay
