#include "adapters/posix/machine.h"

#include <utility>

#include "adapters/posix/child_processes.h"
#include "adapters/posix/class_table.h"
#include "adapters/posix/code_pages.h"
#include "adapters/posix/folder_locks.h"
#include "adapters/posix/machine_files.h"
#include "adapters/posix/machine_folder.h"
#include "adapters/posix/profile_versions.h"
#include "adapters/posix/registry_file.h"
#include "adapters/posix/sleeping_pump.h"
#include "formats/ini/profile_files.h"
#include "formats/jet/databases.h"
#include "formats/text/windows_1252.h"

namespace parvex::posix {

struct Machine::Parts {
  explicit Parts(const std::filesystem::path& root) : folder(root) {}

  MachineFolder folder;
  Windows1252 codePage;
  RegistryFile registry{folder, codePage};
  MachineFiles files{folder};
  FolderLocks locks{folder};
  HostFileVersions profileVersions{folder};
  ini::ProfileFiles privateProfile{files, profileVersions, codePage, "C:\\Windows"};
  ChildProcesses processes{folder};
  SleepingPump messagePump;
  jet::Databases projectDatabases{files, CodePageOf};
  ClassTable classes;
};

Machine::Machine(std::filesystem::path root) : parts_(std::make_unique<Parts>(root)) {}
Machine::~Machine() = default;

const std::filesystem::path& Machine::Root() const { return parts_->folder.Root(); }

Registry& Machine::GetRegistry() { return parts_->registry; }
OwnSettings& Machine::GetOwnSettings() { return parts_->registry; }
PrivateProfile& Machine::GetPrivateProfile() { return parts_->privateProfile; }
Files& Machine::GetFiles() { return parts_->files; }
MachineLocks& Machine::GetLocks() { return parts_->locks; }
Processes& Machine::GetProcesses() { return parts_->processes; }
MessagePump& Machine::GetMessagePump() { return parts_->messagePump; }
ProjectDatabases& Machine::GetProjectDatabases() { return parts_->projectDatabases; }
CodePage& Machine::GetCodePage() { return parts_->codePage; }
automation::Automation& Machine::GetAutomation() { return parts_->classes; }

void Machine::RegisterClass(const std::string& programmaticId, std::function<automation::ObjectRef()> factory) {
  parts_->classes.Register(programmaticId, std::move(factory));
}

Platform Machine::AsPlatform() {
  return {.registry = &parts_->registry,
          .privateProfile = &parts_->privateProfile,
          .files = &parts_->files,
          .locks = &parts_->locks,
          .processes = &parts_->processes,
          .messagePump = &parts_->messagePump,
          .automation = &parts_->classes,
          .projectDatabases = &parts_->projectDatabases,
          .codePage = &parts_->codePage};
}

}  // namespace parvex::posix
