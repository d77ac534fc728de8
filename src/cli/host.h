#pragma once

#include <filesystem>
#include <memory>

#include "platform/platform.h"

namespace parvex::cli {

/// The machine that commands work on, with the legacy application that answers on it.
class Host {
 public:
  /// An AutomationError when the folder does not exist or its settings cannot be understood.
  explicit Host(const std::filesystem::path& machineFolder);
  ~Host();
  Host(const Host&) = delete;
  Host& operator=(const Host&) = delete;

  /// The members live as long as the host.
  parvex::Platform Platform();

 private:
  struct Parts;
  std::unique_ptr<Parts> parts_;
};

/// Makes a sample machine folder that holds a substitute for the legacy application.
void CreateMachine(const std::filesystem::path& folder);

/// Makes standard input and output carry bytes as they stand, and makes writing to a reader that went away, or to a
/// stream that was closed from the start, an error that can be reported.
void PrepareStandardStreams();

}  // namespace parvex::cli
