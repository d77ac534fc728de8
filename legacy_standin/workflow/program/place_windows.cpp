#include <filesystem>

#include "adapters/windows/apartment.h"
#include "adapters/windows/machine.h"
#include "adapters/windows/this_program.h"
#include "adapters/windows/wide_text.h"
#include "legacy_standin/workflow/program/place.h"

namespace parvex::standin {
struct WorkflowPlace::Parts {
  windows::Apartment apartment;
  windows::Machine machine;
  std::filesystem::path folder = std::filesystem::path(windows::ProgramPath()).parent_path().parent_path();
  std::string root = windows::Narrow(folder.wstring());
};

WorkflowPlace::WorkflowPlace() : parts_(std::make_unique<Parts>()) {}

WorkflowPlace::~WorkflowPlace() = default;

WorkflowMachine WorkflowPlace::Machine() {
  windows::Machine& machine = parts_->machine;
  return {machine.GetFiles(), machine.GetPrivateProfile(), machine.GetCodePage()};
}

const std::string& WorkflowPlace::Root() const { return parts_->root; }

StandinSettings WorkflowPlace::Settings() const { return ReadStandinSettings(parts_->folder); }

std::vector<std::string> WorkflowArguments(int, char**) { return windows::ProgramArguments(); }

}  // namespace parvex::standin
