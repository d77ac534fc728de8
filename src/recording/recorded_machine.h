#pragma once

#include <memory>
#include <string>

#include "recording/current_recording.h"
#include "seams/platform.h"

namespace parvex::recording {

/// The machine of one instance, with every seam that leads outside watched for the recording of the call that runs.
/// While none does, all goes straight through. `outside` outlives this; what came from it may outlive it, too.
class RecordedMachine {
 public:
  explicit RecordedMachine(const parvex::Platform& outside);
  ~RecordedMachine();
  RecordedMachine(const RecordedMachine&) = delete;
  RecordedMachine& operator=(const RecordedMachine&) = delete;

  parvex::Platform Platform();
  CurrentRecording& Current();

  /// Objects that an instance made before it was recorded, watched from now on. Null stays null.
  std::unique_ptr<MessageRouter> Watched(std::unique_ptr<MessageRouter> router);
  automation::ObjectRef Watched(automation::ObjectRef object);

 private:
  struct Parts;
  std::unique_ptr<Parts> parts_;
};

}  // namespace parvex::recording
