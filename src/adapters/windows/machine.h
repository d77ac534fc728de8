#pragma once

#include "adapters/windows/ansi_text.h"
#include "adapters/windows/dao_databases.h"
#include "adapters/windows/machine_profiles.h"
#include "adapters/windows/named_locks.h"
#include "adapters/windows/system_automation.h"
#include "adapters/windows/system_files.h"
#include "adapters/windows/system_message_boxes.h"
#include "adapters/windows/system_message_pump.h"
#include "adapters/windows/system_message_router.h"
#include "adapters/windows/system_processes.h"
#include "adapters/windows/system_registry.h"
#include "seams/platform.h"

namespace parvex::windows {

/// The seams of this Windows. COM has to be initialised on the threads that use it.
class Machine {
 public:
  Machine() = default;
  Machine(const Machine&) = delete;
  Machine& operator=(const Machine&) = delete;

  Registry& GetRegistry() { return registry_; }
  OwnSettings& GetOwnSettings() { return registry_; }
  PrivateProfile& GetPrivateProfile() { return privateProfile_; }
  Files& GetFiles() { return files_; }
  MachineLocks& GetLocks() { return locks_; }
  Processes& GetProcesses() { return processes_; }
  MessagePump& GetMessagePump() { return messagePump_; }
  MessageBoxes& GetMessageBoxes() { return messageBoxes_; }
  MessageRouters& GetMessageRouters() { return messageRouters_; }
  automation::Automation& GetAutomation() { return automation_; }
  ProjectDatabases& GetProjectDatabases() { return databases_; }
  CodePage& GetCodePage() { return codePage_; }

  Platform AsPlatform() {
    return {.registry = &registry_,
            .privateProfile = &privateProfile_,
            .files = &files_,
            .locks = &locks_,
            .processes = &processes_,
            .messagePump = &messagePump_,
            .messageBoxes = &messageBoxes_,
            .messageRouters = &messageRouters_,
            .automation = &automation_,
            .projectDatabases = &databases_,
            .codePage = &codePage_};
  }

 private:
  SystemRegistry registry_;
  SystemFiles files_;
  NamedLocks locks_;
  SystemProcesses processes_;
  SystemMessagePump messagePump_;
  SystemMessageBoxes messageBoxes_;
  SystemMessageRouters messageRouters_{registry_};
  SystemAutomation automation_;
  DaoDatabases databases_{automation_};
  SystemCodePage codePage_;
  MachineProfiles privateProfile_{files_, codePage_};
};

}  // namespace parvex::windows
