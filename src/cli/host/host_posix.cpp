#include <fcntl.h>
#include <signal.h>
#include <unistd.h>

#include "adapters/posix/machine.h"
#include "adapters/posix/native_system.h"
#include "cli/host/exit_status.h"
#include "cli/host/folder_look_posix.h"
#include "cli/host/host.h"
#include "cli/host/written_boxes.h"
#include "legacy_standin/sample/sample_machine.h"
#include "legacy_standin/standin.h"

namespace parvex::cli {
namespace {

std::filesystem::path WorkflowProgram() {
  const std::filesystem::path folder = std::filesystem::read_symlink("/proc/self/exe").parent_path();
  const std::filesystem::path beside = folder / "kdwfm470";
  const std::filesystem::path installed = folder.parent_path() / "libexec" / "parvex" / "kdwfm470";
  return std::filesystem::exists(beside) ? beside : installed;
}

void DoNothing(int) {}

// A closed descriptor would be given to the next file that is opened, and that file get our output. What takes its
// place refuses to be read or written.
void KeepTaken(int descriptor, int mode) {
  if (fcntl(descriptor, F_GETFD) == -1) {
    const int opened = open("/dev/null", mode);
    if (opened != -1 && opened != descriptor) {
      dup2(opened, descriptor);
      close(opened);
    }
  }
}

// The one router of a machine folder. It answers for every identifier, but there has to be one.
class FolderRouters : public MessageRouters {
 public:
  FolderRouters(OwnSettings& settings, MessageRouters& substitute) : settings_(settings), substitute_(substitute) {}
  std::unique_ptr<MessageRouter> Create() override {
    RouterIdsInForce(settings_);
    return substitute_.Create();
  }

 private:
  OwnSettings& settings_;
  MessageRouters& substitute_;
};

}  // namespace

struct Host::Parts {
  explicit Parts(const std::filesystem::path& folder)
      : machine(folder),
        standin({machine.GetRegistry(), machine.GetFiles(), machine.GetProjectDatabases(), machine.GetCodePage(),
                 standin::ReadStandinSettings(folder)}) {
    for (const standin::LateBoundClass& offered : standin.Classes()) {
      machine.RegisterClass(offered.programmaticId, offered.create);
    }
  }
  posix::Machine machine;
  WrittenBoxes messageBoxes;
  standin::Standin standin;
  FolderRouters routers{machine.GetOwnSettings(), standin.Routers()};
  std::unique_ptr<MachineLook> look = LookAtFolder(machine, standin.Classes(), WorkflowProgram());
};

Host::Host(const std::string& machineFolder) {
  if (machineFolder.empty()) {
    throw UsageError("no machine folder: name one with --machine DIR or in the environment variable PARVEX_MACHINE");
  }
  parts_ = std::make_unique<Parts>(machineFolder);
}

Host::~Host() = default;

parvex::Platform Host::Platform() {
  parvex::Platform platform = parts_->machine.AsPlatform();
  platform.messageBoxes = &parts_->messageBoxes;
  platform.messageRouters = &parts_->routers;
  return platform;
}

OwnSettings& Host::Settings() { return parts_->machine.GetOwnSettings(); }

MachineLook& Host::Look() { return *parts_->look; }

HostFacts Host::Facts() {
  constexpr unsigned kBitness = 8 * sizeof(void*);
  return {.program = std::to_string(kBitness) + "-bit program on a machine folder, which has no bitness",
          .bitness = kBitness,
          .codePage = "1252",
          .runsWindowsPrograms = false};
}

std::shared_ptr<const Platform> MachineOfFolder(const std::string& folder, unsigned codePage) {
  constexpr unsigned kWestern = 1252;
  if (codePage != kWestern) {
    throw UsageError("the code page " + std::to_string(codePage) + " is not known here");
  }
  struct Folder {
    explicit Folder(const std::string& path) : machine(path), platform(machine.AsPlatform()) {}
    posix::Machine machine;
    Platform platform;
  };
  const auto held = std::make_shared<Folder>(folder);
  return {held, &held->platform};
}

std::unique_ptr<HostSystem> ThisSystem() { return std::make_unique<posix::NativeSystem>(); }

std::vector<std::string> ProgramArguments(int argc, char** argv) { return {argv + 1, argv + argc}; }

void CreateMachine(const std::filesystem::path& folder) { standin::CreateSampleMachine(folder, WorkflowProgram()); }

RouterIds RouterIdsIn(const std::string& typeLibrary) {
  throw UsageError(typeLibrary +
                   " does not hold what router-ids writes; a type library can be read by parvex on Windows (or under "
                   "Wine) only");
}

void PrepareStandardStreams() {
  KeepTaken(STDIN_FILENO, O_WRONLY);
  KeepTaken(STDOUT_FILENO, O_RDONLY);
  KeepTaken(STDERR_FILENO, O_WRONLY);
  // A handler instead of SIG_IGN: started programs get the default back, as they expect.
  signal(SIGPIPE, DoNothing);
}

std::shared_ptr<void> EnterPlatform() { return nullptr; }

bool IsTerminal(std::FILE* stream) { return isatty(fileno(stream)) != 0; }

}  // namespace parvex::cli
