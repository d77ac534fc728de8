#pragma once

#include <filesystem>
#include <functional>
#include <memory>
#include <string>

#include "seams/own_settings.h"
#include "seams/platform.h"

namespace parvex::posix {

/// The seams of a machine that is a folder: registry.reg, drive_c/ and so on. The folder need not be complete: what is
/// missing is missing on the machine. A folder that does not exist is an AutomationError (76).
class Machine {
 public:
  explicit Machine(std::filesystem::path root);
  ~Machine();
  Machine(const Machine&) = delete;
  Machine& operator=(const Machine&) = delete;

  const std::filesystem::path& Root() const;

  Registry& GetRegistry();
  OwnSettings& GetOwnSettings();
  PrivateProfile& GetPrivateProfile();
  Files& GetFiles();
  MachineLocks& GetLocks();
  Processes& GetProcesses();
  MessagePump& GetMessagePump();
  ProjectDatabases& GetProjectDatabases();
  CodePage& GetCodePage();

  /// The automation adapter: a table of registered classes, empty at first.
  automation::Automation& GetAutomation();
  void RegisterClass(const std::string& programmaticId, std::function<automation::ObjectRef()> factory);

  /// All seams but the message boxes and the message routers, which are null: how a program speaks to its user is its
  /// own affair, and a folder has no legacy application of itself.
  Platform AsPlatform();

 private:
  struct Parts;
  std::unique_ptr<Parts> parts_;
};

}  // namespace parvex::posix
