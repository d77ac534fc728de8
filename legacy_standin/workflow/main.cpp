// kdwfm470: the workflow program of the substitute legacy application. It is started from the program folder of a
// machine (.../drive_c/Korvane/TQ5-VX/Bin) and finds the other folders from there.

#include <cstdio>
#include <exception>
#include <filesystem>
#include <optional>
#include <string>
#include <vector>

#include "legacy_standin/standin_settings.h"
#include "legacy_standin/workflow.h"
#include "platform/posix/machine.h"
#include "platform/text.h"

namespace {

struct InstalledHere {
  std::filesystem::path machineFolder;
  std::string root;  ///< a path of the machine
};

/// Where a program at this path is installed: the machine folder is the one that holds its drive folder ("drive_c").
std::optional<InstalledHere> FindInstallation(const std::filesystem::path& program) {
  std::string root;
  for (std::filesystem::path folder = program.parent_path().parent_path(); folder.has_relative_path();
       folder = folder.parent_path()) {
    const std::string name = folder.filename().string();
    if (name.size() == 7 && parvex::EqualIgnoringCase(name.substr(0, 6), "drive_")) {
      return InstalledHere{folder.parent_path(), parvex::ToUpper(name.substr(6)) + ":" + root};
    }
    root = "\\" + name + root;
  }
  return std::nullopt;
}

int Run(const std::vector<std::string>& arguments) {
  const std::filesystem::path program = std::filesystem::read_symlink("/proc/self/exe");
  const std::optional<InstalledHere> here = FindInstallation(program);
  if (!here) {
    std::fprintf(stderr, "kdwfm470: %s is in no machine folder (.../drive_c/.../Bin)\n", program.c_str());
    return parvex::standin::kWorkflowWrongUsage;
  }
  parvex::posix::Machine machine(here->machineFolder);
  const parvex::standin::StandinSettings settings = parvex::standin::ReadStandinSettings(here->machineFolder);
  const parvex::standin::WorkflowResult result =
      parvex::standin::RunWorkflow({machine.GetFiles(), machine.GetPrivateProfile(), machine.GetCodePage()}, here->root,
                                   arguments, settings.workflow);
  if (!result.message.empty()) {
    std::fprintf(stderr, "kdwfm470: %s\n", result.message.c_str());
  }
  return result.exitCode;
}

}  // namespace

int main(int argc, char** argv) {
  try {
    return Run({argv + 1, argv + argc});
  } catch (const std::exception& error) {
    std::fprintf(stderr, "kdwfm470: %s\n", error.what());
    return parvex::standin::kWorkflowNoOutput;
  }
}
