#include <gtest/gtest.h>
#include <windows.h>

#include <deque>
#include <thread>

#include "adapters/windows/ansi_text.h"
#include "adapters/windows/exposed_object.h"
#include "adapters/windows/machine.h"
#include "adapters/windows/wide_text.h"
#include "tests/contract/contract_fixture.h"
#include "tests/contract/substitute_engine_windows.h"
#include "tests/support/offered_class_windows.h"
#include "tests/support/own_boxes_windows.h"

namespace parvex::test {
namespace {

// Tests may run side by side: a key and a folder for each process.
std::string ScratchKey() { return "SOFTWARE\\ParvexContract-" + std::to_string(GetCurrentProcessId()); }

// An empty folder of its own below the system's temporary folder.
std::string NewScratchFolder() {
  wchar_t temporary[MAX_PATH];
  GetTempPathW(MAX_PATH, temporary);
  const std::wstring folder = std::wstring(temporary) + L"parvex-contract-" + std::to_wstring(GetCurrentProcessId());
  windows::SystemFiles files;
  const std::string path = windows::Narrow(folder);
  if (files.IsFolder(path)) {
    files.RemoveFolder(path);
  }
  files.CreateFolder(path);
  return path;
}

// The folder of this program, with the final backslash.
std::wstring OwnFolder() {
  wchar_t path[MAX_PATH];
  const DWORD length = GetModuleFileNameW(nullptr, path, MAX_PATH);
  const std::wstring own(path, length);
  return own.substr(0, own.rfind(L'\\') + 1);
}

}  // namespace

bool RunsUnderWine() { return GetProcAddress(GetModuleHandleW(L"ntdll.dll"), "wine_get_version") != nullptr; }

SubstituteEngine::SubstituteEngine(std::string_view version)
    : manifest_(OwnFolder() + L"..\\bin\\dao_engine." + windows::Widen(version) + L".manifest") {}

struct ContractMachine::Host {
  SubstituteEngine engine{"36"};
  windows::Machine machine;
  std::deque<OfferedClass> offered;
};

namespace {

// In both hives, and as programs of either bitness see it.
void RemoveKey(const std::string& key) {
  for (const HKEY hive : {HKEY_CURRENT_USER, HKEY_LOCAL_MACHINE}) {
    RegDeleteKeyExA(hive, key.c_str(), KEY_WOW64_64KEY, 0);
    RegDeleteKeyExA(hive, key.c_str(), KEY_WOW64_32KEY, 0);
  }
}

// Every suite runs in an apartment, as the component does.
class Apartment : public testing::Environment {
  void SetUp() override { CoInitializeEx(nullptr, COINIT_APARTMENTTHREADED); }
  void TearDown() override { CoUninitialize(); }
};

[[maybe_unused]] const testing::Environment* const kApartment = testing::AddGlobalTestEnvironment(new Apartment);

}  // namespace

ContractMachine::ContractMachine()
    : host_(std::make_unique<Host>()),
      registry(host_->machine.GetRegistry()),
      privateProfile(host_->machine.GetPrivateProfile()),
      files(host_->machine.GetFiles()),
      locks(host_->machine.GetLocks()),
      processes(host_->machine.GetProcesses()),
      messagePump(host_->machine.GetMessagePump()),
      messageBoxes(host_->machine.GetMessageBoxes()),
      automation(host_->machine.GetAutomation()),
      projectDatabases(host_->machine.GetProjectDatabases()),
      codePage(host_->machine.GetCodePage()),
      scratch(NewScratchFolder()),
      scratchKey(ScratchKey()) {
  RemoveKey(scratchKey);
  // Where the probe writes: programs started from here inherit it.
  SetEnvironmentVariableW(L"PARVEX_PROBE_FOLDER", windows::Widen(scratch).c_str());
}

ContractMachine::~ContractMachine() {
  RemoveKey(scratchKey);
  try {
    for (const std::string& name : files.ListFiles(Path("*.*"))) {
      SetReadOnly(Path(name), false);
    }
    files.RemoveFolder(scratch);
  } catch (const AutomationError& error) {
    ADD_FAILURE() << error.Description();
  }
}

void ContractMachine::SetRegistryString(std::string_view valueName, std::string_view text) {
  HKEY key = nullptr;
  ASSERT_EQ(RegCreateKeyA(HKEY_LOCAL_MACHINE, scratchKey.c_str(), &key), 0);
  const std::wstring value = windows::Widen(text);
  RegSetValueExW(key, windows::Widen(valueName).c_str(), 0, REG_SZ, reinterpret_cast<const BYTE*>(value.c_str()),
                 static_cast<DWORD>((value.size() + 1) * sizeof(wchar_t)));
  RegCloseKey(key);
}

void ContractMachine::SetReadOnly(std::string_view path, bool readOnly) {
  SetFileAttributesW(windows::Widen(path).c_str(), readOnly ? FILE_ATTRIBUTE_READONLY : FILE_ATTRIBUTE_NORMAL);
}

void ContractMachine::InstallProbe(std::string_view path) {
  const std::wstring probe = OwnFolder() + L"contract_probe.exe";
  ASSERT_TRUE(CopyFileW(probe.c_str(), windows::Widen(path).c_str(), FALSE)) << GetLastError();
}

std::string ContractMachine::Offer(std::function<automation::ObjectRef()> make) {
  const std::string programmaticId = "Parvex.Contract" + std::to_string(GetCurrentProcessId());
  host_->offered.emplace_back(programmaticId, [make] { return windows::ExposeObject(make()); });
  return programmaticId;
}

std::string ContractMachine::SeenInBox(std::string_view text, std::string_view caption, MessageBoxes::Icon icon) {
  std::wstring seen;
  std::thread user([&] { seen = CloseBox(windows::Widen(caption)); });
  messageBoxes.Show(text, caption, icon);
  user.join();
  return windows::Narrow(seen);
}

}  // namespace parvex::test
