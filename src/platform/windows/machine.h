#pragma once

#include "platform/platform.h"
#include "platform/windows/ansi_text.h"
#include "platform/windows/automation.h"
#include "platform/windows/dao_databases.h"
#include "platform/windows/files.h"
#include "platform/windows/message_pump.h"
#include "platform/windows/message_router.h"
#include "platform/windows/private_profile.h"
#include "platform/windows/processes.h"
#include "platform/windows/registry.h"

namespace parvex::windows {

/// The seams of this Windows. COM has to be initialised on the threads that use it.
class Machine {
 public:
  Machine() = default;
  Machine(const Machine&) = delete;
  Machine& operator=(const Machine&) = delete;

  Registry& GetRegistry() { return registry_; }
  PrivateProfile& GetPrivateProfile() { return privateProfile_; }
  Files& GetFiles() { return files_; }
  Processes& GetProcesses() { return processes_; }
  MessagePump& GetMessagePump() { return messagePump_; }
  MessageBoxes& GetMessageBoxes() { return messageBoxes_; }
  MessageRouters& GetMessageRouters() { return messageRouters_; }
  automation::Automation& GetAutomation() { return automation_; }
  ProjectDatabases& GetProjectDatabases() { return databases_; }
  CodePage& GetCodePage() { return codePage_; }

  Platform AsPlatform() {
    return {registry_,       privateProfile_, files_,     processes_, messagePump_, messageBoxes_,
            messageRouters_, automation_,     databases_, codePage_};
  }

 private:
  SystemRegistry registry_;
  SystemPrivateProfile privateProfile_;
  SystemFiles files_;
  SystemProcesses processes_;
  SystemMessagePump messagePump_;
  SystemMessageBoxes messageBoxes_;
  SystemMessageRouters messageRouters_;
  SystemAutomation automation_;
  DaoDatabases databases_{automation_};
  SystemCodePage codePage_;
};

}  // namespace parvex::windows
