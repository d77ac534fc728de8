#include <filesystem>
#include <optional>

#include "adapters/posix/machine.h"
#include "formats/text/text.h"
#include "legacy_standin/workflow/program/place.h"
#include "seams/automation_error.h"

namespace parvex::standin {
namespace {

struct InstalledHere {
  std::filesystem::path machineFolder;
  std::string root;  ///< a path of the machine
};

/// Where a program at this path is installed: the machine folder is the one that holds its drive folder ("drive_c").
InstalledHere FindInstallation(const std::filesystem::path& program) {
  std::string root;
  for (std::filesystem::path folder = program.parent_path().parent_path(); folder.has_relative_path();
       folder = folder.parent_path()) {
    const std::string name = folder.filename().string();
    if (name.size() == 7 && EqualIgnoringCase(name.substr(0, 6), "drive_")) {
      return {folder.parent_path(), ToUpper(name.substr(6)) + ":" + root};
    }
    root = "\\" + name + root;
  }
  throw MakeRuntimeError(RuntimeError::PathNotFound,
                         program.string() + " is in no machine folder (.../drive_c/.../Bin)");
}

}  // namespace

struct WorkflowPlace::Parts {
  explicit Parts(const InstalledHere& here) : machine(here.machineFolder), root(here.root) {}
  posix::Machine machine;
  std::string root;
};

WorkflowPlace::WorkflowPlace()
    : parts_(std::make_unique<Parts>(FindInstallation(std::filesystem::read_symlink("/proc/self/exe")))) {}

WorkflowPlace::~WorkflowPlace() = default;

WorkflowMachine WorkflowPlace::Machine() {
  posix::Machine& machine = parts_->machine;
  return {machine.GetFiles(), machine.GetPrivateProfile(), machine.GetCodePage()};
}

const std::string& WorkflowPlace::Root() const { return parts_->root; }

StandinSettings WorkflowPlace::Settings() const { return ReadStandinSettings(parts_->machine.Root()); }

std::vector<std::string> WorkflowArguments(int argc, char** argv) { return {argv + 1, argv + argc}; }

}  // namespace parvex::standin
