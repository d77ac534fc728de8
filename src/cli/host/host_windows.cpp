#include <fcntl.h>
#include <io.h>
#include <stdio.h>
#include <windows.h>

#include "adapters/windows/apartment.h"
#include "adapters/windows/folder_machine.h"
#include "adapters/windows/machine.h"
#include "adapters/windows/native_system.h"
#include "adapters/windows/this_program.h"
#include "cli/host/exit_status.h"
#include "cli/host/host.h"
#include "cli/host/system_look_windows.h"
#include "cli/host/written_boxes.h"
#include "com_server/router_ids.h"
#include "legacy_standin/sample/sample_machine.h"

namespace parvex::cli {
namespace {

std::filesystem::path WorkflowProgram() {
  return std::filesystem::path(windows::ProgramPath()).parent_path() / "kdwfm470.exe";
}

}  // namespace

struct Host::Parts {
  windows::Machine machine;
  WrittenBoxes messageBoxes;
  std::unique_ptr<MachineLook> look = LookAtSystem(machine.GetFiles());
};

Host::Host(const std::string& machineFolder) : parts_(std::make_unique<Parts>()) {
  if (!machineFolder.empty()) {
    throw UsageError("the machine is this one: no folder (" + machineFolder + ") can stand for it here");
  }
}

Host::~Host() = default;

parvex::Platform Host::Platform() {
  parvex::Platform platform = parts_->machine.AsPlatform();
  platform.messageBoxes = &parts_->messageBoxes;
  return platform;
}

OwnSettings& Host::Settings() { return parts_->machine.GetOwnSettings(); }

MachineLook& Host::Look() { return *parts_->look; }

HostFacts Host::Facts() {
  constexpr unsigned kBitness = 8 * sizeof(void*);
  return {.program = std::to_string(kBitness) + "-bit Windows program",
          .bitness = kBitness,
          .codePage = std::to_string(GetACP()),
          .runsWindowsPrograms = true};
}

std::shared_ptr<const Platform> MachineOfFolder(const std::string& folder, unsigned codePage) {
  struct Folder {
    Folder(const std::string& path, unsigned number) : machine(path, number), platform(machine.AsPlatform()) {}
    windows::FolderMachine machine;
    parvex::Platform platform;
  };
  const auto held = std::make_shared<Folder>(folder, codePage);
  return {held, &held->platform};
}

std::unique_ptr<HostSystem> ThisSystem() { return std::make_unique<windows::NativeSystem>(); }

std::vector<std::string> ProgramArguments(int, char**) { return windows::ProgramArguments(); }

void CreateMachine(const std::filesystem::path& folder) { standin::CreateSampleMachine(folder, WorkflowProgram()); }

RouterIds RouterIdsIn(const std::string& typeLibrary) {
  return com::ReadRouterIds(std::filesystem::absolute(PathOf(typeLibrary)).wstring());
}

void PrepareStandardStreams() {
  for (std::FILE* stream : {stdin, stdout, stderr}) {
    _setmode(_fileno(stream), _O_BINARY);
  }
}

std::shared_ptr<void> EnterPlatform() { return std::make_shared<windows::Apartment>(); }

bool IsTerminal(std::FILE* stream) {
  const auto console = reinterpret_cast<HANDLE>(_get_osfhandle(_fileno(stream)));
  DWORD mode = 0;
  return _isatty(_fileno(stream)) != 0 && GetConsoleMode(console, &mode) != 0 &&
         SetConsoleMode(console, mode | ENABLE_VIRTUAL_TERMINAL_PROCESSING) != 0;
}

}  // namespace parvex::cli
