#include "adapters/posix/child_processes.h"

#include <errno.h>
#include <fcntl.h>
#include <signal.h>
#include <spawn.h>
#include <sys/wait.h>
#include <unistd.h>

#include <string>

#include "adapters/posix/program_line.h"
#include "seams/automation_error.h"

namespace parvex::posix {
namespace {

constexpr std::string_view kMachineVariable = "PARVEX_MACHINE=";
constexpr std::uint32_t kEndedBySignal = 0xC0000000u;

std::uint32_t ExitCodeOf(int status) {
  return WIFSIGNALED(status) ? kEndedBySignal + static_cast<std::uint32_t>(WTERMSIG(status))
                             : static_cast<std::uint32_t>(WEXITSTATUS(status));
}

class ChildProcess : public Process {
 public:
  ChildProcess(pid_t child, std::shared_ptr<std::vector<pid_t>> abandoned)
      : child_(child), abandoned_(std::move(abandoned)) {}

  ~ChildProcess() override {
    if (exitCode_ == kStillActive && waitpid(child_, nullptr, WNOHANG) == 0) {
      abandoned_->push_back(child_);
    }
  }

  std::uint32_t ExitCode() override {
    if (exitCode_ != kStillActive) {
      return exitCode_;
    }
    int status = 0;
    const pid_t ended = waitpid(child_, &status, WNOHANG);
    if (ended < 0 && errno != EINTR) {
      throw MakeRuntimeError(RuntimeError::InvalidCall,
                             "the exit code of process " + std::to_string(child_) + " is lost");
    }
    if (ended == child_) {
      exitCode_ = ExitCodeOf(status);
    }
    return exitCode_;
  }

 private:
  pid_t child_;
  std::shared_ptr<std::vector<pid_t>> abandoned_;
  std::uint32_t exitCode_ = kStillActive;  // a program of this system cannot end with 259
};

// What the child gets of our open files.
class ChildFiles {
 public:
  ChildFiles() {
    posix_spawn_file_actions_init(&actions_);
    posix_spawn_file_actions_addopen(&actions_, STDIN_FILENO, "/dev/null", O_RDONLY, 0);
    posix_spawn_file_actions_adddup2(&actions_, STDERR_FILENO, STDOUT_FILENO);
    posix_spawn_file_actions_addclosefrom_np(&actions_, STDERR_FILENO + 1);
  }
  ~ChildFiles() { posix_spawn_file_actions_destroy(&actions_); }
  ChildFiles(const ChildFiles&) = delete;
  ChildFiles& operator=(const ChildFiles&) = delete;

  const posix_spawn_file_actions_t* Actions() const { return &actions_; }

 private:
  posix_spawn_file_actions_t actions_;
};

std::vector<std::string> ChildEnvironment(const std::filesystem::path& machine) {
  std::vector<std::string> environment{std::string(kMachineVariable) + machine.string()};
  for (char** entry = environ; *entry != nullptr; ++entry) {
    if (!std::string_view(*entry).starts_with(kMachineVariable)) {
      environment.emplace_back(*entry);
    }
  }
  return environment;
}

// The form that exec takes; valid as long as `texts` stay as they are.
std::vector<char*> Pointers(std::vector<std::string>& texts) {
  std::vector<char*> pointers;
  for (std::string& text : texts) {
    pointers.push_back(text.data());
  }
  pointers.push_back(nullptr);
  return pointers;
}

}  // namespace

ChildProcesses::ChildProcesses(MachineFolder& folder)
    : folder_(folder), abandoned_(std::make_shared<std::vector<pid_t>>()) {}

std::unique_ptr<Process> ChildProcesses::Start(std::string_view commandLine, int /*windowStyle*/,
                                               std::string_view program) {
  std::erase_if(*abandoned_, [](pid_t child) { return waitpid(child, nullptr, WNOHANG) != 0; });
  commandLine = commandLine.substr(0, commandLine.find('\0'));
  CommandLine line =
      program.empty() ? CommandLine::Parse(commandLine, folder_) : CommandLine::Of(program, commandLine, folder_);
  std::vector<std::string> environment = ChildEnvironment(folder_.Root());
  const ChildFiles files;
  pid_t child = 0;
  const int failed = posix_spawn(&child, line.program.c_str(), files.Actions(), nullptr,
                                 Pointers(line.arguments).data(), Pointers(environment).data());
  if (failed != 0) {
    // Only what is known to lie in the file is said of it; anything else has the system's number.
    const bool isNoProgram = failed == ENOEXEC || failed == EACCES;
    throw MakeRuntimeError(RuntimeError::InvalidCall,
                           FailureText("cannot start", commandLine,
                                       isNoProgram ? "it is no program that the system can run"
                                                   : "the system refuses to, with error " + std::to_string(failed)));
  }
  return std::make_unique<ChildProcess>(child, abandoned_);
}

}  // namespace parvex::posix
