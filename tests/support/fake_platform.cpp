#include "tests/support/fake_platform.h"

#include <stdlib.h>

#include <fstream>
#include <iterator>
#include <stdexcept>

#include "legacy_env/thread_state.h"
#include "seams/automation_error.h"

namespace parvex::test {
namespace {

class FakeRouter : public MessageRouter {
 public:
  explicit FakeRouter(FakeRouters& routers) : routers_(routers) {}

  bool SendRequestMessage(const std::string& request, std::string& response) override {
    routers_.requests.push_back(request);
    if (routers_.onRequest) {
      return routers_.onRequest(request, response);
    }
    if (routers_.answers.empty()) {
      response.clear();
      return false;
    }
    const FakeRouters::Answer answer = routers_.answers.front();
    routers_.answers.pop_front();
    response = answer.text;
    return answer.success;
  }

 private:
  FakeRouters& routers_;
};

class FakeProcess : public Process {
 public:
  FakeProcess(int polls, std::uint32_t exitCode) : polls_(polls), exitCode_(exitCode) {}
  std::uint32_t ExitCode() override { return polls_-- > 0 ? kStillActive : exitCode_; }

 private:
  int polls_;
  std::uint32_t exitCode_;
};

std::filesystem::path InstalledMachine(const std::filesystem::path& root) {
  for (const char* name : {"Bin", "Temp", "Projects", "Archives"}) {
    std::filesystem::create_directories(root / "drive_c" / "Korvane" / "TQ5-VX" / name);
  }
  return root;
}

}  // namespace

std::unique_ptr<MessageRouter> FakeRouters::Create() {
  if (missing) {
    throw MakeRuntimeError(RuntimeError::CannotCreateObject, "no message router");
  }
  return std::make_unique<FakeRouter>(*this);
}

std::unique_ptr<Process> FakeProcesses::Start(std::string_view commandLine, int windowStyle, std::string_view program) {
  started.push_back({std::string(commandLine), windowStyle, std::string(program)});
  if (startError != 0) {
    throw MakeRuntimeError(static_cast<RuntimeError>(startError), "cannot start " + std::string(commandLine));
  }
  if (work) {
    work(std::string(commandLine));
  }
  return std::make_unique<FakeProcess>(polls, exitCode);
}

TemporaryFolder::TemporaryFolder() {
  std::string pattern = (std::filesystem::temp_directory_path() / "parvex-test-XXXXXX").string();
  if (mkdtemp(pattern.data()) == nullptr) {
    throw std::runtime_error("cannot make a folder " + pattern);
  }
  path_ = pattern;
}

TemporaryFolder::~TemporaryFolder() {
  std::error_code ignored;
  std::filesystem::remove_all(path_, ignored);
}

FakeMachine::FakeMachine() : machine(InstalledMachine(folder.Path())), platform(machine.AsPlatform()) {
  platform.processes = &processes;
  platform.messagePump = &pump;
  platform.messageBoxes = &boxes;
  platform.messageRouters = &routers;
  platform.automation = &automation;
  ForgetThisThread();
  SetBinPath(kBinPath);
}

void FakeMachine::SetBinPath(const std::string& binPath) {
  std::string escaped;
  for (const char c : binPath) {
    escaped.append(c == '\\' ? "\\\\" : std::string(1, c));
  }
  std::string text = "REGEDIT4\r\n\r\n[HKEY_LOCAL_MACHINE\\SOFTWARE\\Korvane\\KDQ47]\r\n";
  if (!binPath.empty()) {
    text += "\"BinPath\"=\"" + escaped + "\"\r\n";
  }
  WriteHostFile(folder.Path() / "registry.reg", text);
}

void FakeMachine::Write(const std::string& path, std::string_view bytes) {
  machine.GetFiles().CreateFolder(path.substr(0, path.rfind('\\')));
  machine.GetFiles().Replace(path, bytes);
}

std::string FakeMachine::Read(const std::string& path) { return machine.GetFiles().ReadAll(path); }

bool FakeMachine::Exists(const std::string& path) { return machine.GetFiles().IsFile(path); }

void WriteHostFile(const std::filesystem::path& path, std::string_view bytes) {
  std::ofstream(path, std::ios::binary).write(bytes.data(), static_cast<std::streamsize>(bytes.size()));
}

std::string ReadHostFile(const std::filesystem::path& path) {
  std::ifstream file(path, std::ios::binary);
  return std::string(std::istreambuf_iterator<char>(file), {});
}

}  // namespace parvex::test
