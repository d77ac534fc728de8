#include <gtest/gtest.h>

#include <filesystem>

#include "adapters/posix/machine.h"
#include "adapters/posix/machine_folder.h"
#include "cli/host/written_boxes.h"
#include "tests/contract/contract_fixture.h"
#include "tests/support/fake_platform.h"

namespace parvex::test {
namespace {

constexpr const char* kScratch = "C:\\Contract";

// A machine in a folder of its own with nothing on its drive C but the scratch folder.
std::filesystem::path BareMachine(const std::filesystem::path& root) {
  std::filesystem::create_directories(root / "drive_c" / "Contract");
  return root;
}

std::string Escaped(std::string_view text) {
  std::string escaped;
  for (const char c : text) {
    escaped.append(c == '\\' || c == '"' ? "\\" : "").push_back(c);
  }
  return escaped;
}

}  // namespace

bool RunsUnderWine() { return false; }

struct ContractMachine::Host {
  TemporaryFolder folder;
  posix::Machine machine{BareMachine(folder.Path())};
  WrittenBoxes messageBoxes;
  std::string registryText = "\xEF\xBB\xBFWindows Registry Editor Version 5.00\r\n";

  std::filesystem::path HostPath(std::string_view path) { return posix::MachineFolder(folder.Path()).Target(path); }
};

ContractMachine::ContractMachine()
    : host_(std::make_unique<Host>()),
      registry(host_->machine.GetRegistry()),
      privateProfile(host_->machine.GetPrivateProfile()),
      files(host_->machine.GetFiles()),
      locks(host_->machine.GetLocks()),
      processes(host_->machine.GetProcesses()),
      messagePump(host_->machine.GetMessagePump()),
      messageBoxes(host_->messageBoxes),
      automation(host_->machine.GetAutomation()),
      projectDatabases(host_->machine.GetProjectDatabases()),
      codePage(host_->machine.GetCodePage()),
      scratch(kScratch),
      scratchKey("SOFTWARE\\Parvex\\Contract") {}

ContractMachine::~ContractMachine() = default;

void ContractMachine::SetRegistryString(std::string_view valueName, std::string_view text) {
  host_->registryText +=
      "\r\n[HKEY_LOCAL_MACHINE\\" + scratchKey + "]\r\n\"" + Escaped(valueName) + "\"=\"" + Escaped(text) + "\"\r\n";
  WriteHostFile(host_->folder.Path() / "registry.reg", host_->registryText);
}

void ContractMachine::SetReadOnly(std::string_view path, bool readOnly) {
  using std::filesystem::perms;
  const perms granted = readOnly ? perms::owner_read : perms::owner_read | perms::owner_write;
  std::filesystem::permissions(host_->HostPath(path), granted);
}

void ContractMachine::InstallProbe(std::string_view path) {
  const std::string folder = host_->HostPath(Path(kProbeReport)).parent_path().string();
  std::string script = "#!/bin/sh\ncd '" + folder + "'\n: > " + std::string(kProbeReport) + "\n";
  script += "for argument in \"$@\"; do printf '%s\\n' \"$argument\" >> " + std::string(kProbeReport) + "; done\n";
  script += "while [ -e " + std::string(kProbeHold) + " ]; do sleep 0.01; done\n";
  script += "case \"$1\" in exit=*) exit \"${1#exit=}\" ;; esac\n";
  const std::filesystem::path host = host_->HostPath(path);
  WriteHostFile(host, script);
  std::filesystem::permissions(host, std::filesystem::perms::owner_all);
}

std::string ContractMachine::Offer(std::function<automation::ObjectRef()> make) {
  host_->machine.RegisterClass("Parvex.Contract", std::move(make));
  return "Parvex.Contract";
}

std::string ContractMachine::SeenInBox(std::string_view text, std::string_view caption, MessageBoxes::Icon icon) {
  testing::internal::CaptureStderr();
  messageBoxes.Show(text, caption, icon);
  return testing::internal::GetCapturedStderr();
}

}  // namespace parvex::test
