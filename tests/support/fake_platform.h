#pragma once

#include <chrono>
#include <deque>
#include <filesystem>
#include <functional>
#include <map>
#include <memory>
#include <string>
#include <vector>

#include "adapters/posix/machine.h"
#include "seams/platform.h"
#include "tests/support/fake_automation.h"

namespace parvex::test {

/// Records every request and answers from a list; a request beyond the list is refused (false, empty answer).
class FakeRouters : public MessageRouters {
 public:
  struct Answer {
    bool success = true;
    std::string text;
  };
  std::vector<std::string> requests;
  std::deque<Answer> answers;
  bool missing = false;                                             ///< creation fails (429)
  std::function<bool(const std::string&, std::string&)> onRequest;  ///< answers instead of the list when set

  std::unique_ptr<MessageRouter> Create() override;
};

/// Records command lines; each started program "runs" for `polls` exit-code polls, does its work and ends with
/// `exitCode`.
class FakeProcesses : public Processes {
 public:
  struct Started {
    std::string commandLine;
    int windowStyle;
    std::string program = {};
  };
  std::vector<Started> started;
  int polls = 0;
  std::uint32_t exitCode = 0;
  std::uint16_t startError = 0;  ///< runtime error number that starting fails with, 0 for none
  std::function<void(const std::string& commandLine)> work;

  std::unique_ptr<Process> Start(std::string_view commandLine, int windowStyle, std::string_view program) override;
};

/// Owns its clock: Sleep only moves it on.
class FakeMessagePump : public MessagePump {
 public:
  int pumped = 0;
  std::chrono::milliseconds now{0};
  void RunPending() override { ++pumped; }
  void Sleep(std::chrono::milliseconds duration) override { now += duration; }
};

class FakeMessageBoxes : public MessageBoxes {
 public:
  struct Box {
    std::string text;
    std::string caption;
    Icon icon;
    bool operator==(const Box&) const = default;
  };
  std::vector<Box> boxes;
  void Show(std::string_view text, std::string_view caption, Icon icon) override {
    boxes.push_back({std::string(text), std::string(caption), icon});
  }
};

/// A folder of its own under the system's temporary folder, removed at the end.
class TemporaryFolder {
 public:
  TemporaryFolder();
  ~TemporaryFolder();
  TemporaryFolder(const TemporaryFolder&) = delete;
  TemporaryFolder& operator=(const TemporaryFolder&) = delete;
  const std::filesystem::path& Path() const { return path_; }

 private:
  std::filesystem::path path_;
};

/// A machine in a temporary folder with an installed legacy application ("C:\Korvane\TQ5-VX\Bin\", empty Bin, Temp,
/// Projects and Archives folders): registry, ini files, files, databases and code page are the native adapters over
/// that folder; programs, router, late-bound classes, boxes and the clock are fakes. Making one drops the thread's kept
/// install paths and ini target.
class FakeMachine {
 public:
  FakeMachine();

  TemporaryFolder folder;
  posix::Machine machine;
  FakeRouters routers;
  FakeProcesses processes;
  FakeMessagePump pump;
  FakeMessageBoxes boxes;
  FakeAutomation automation;
  Platform platform;

  static constexpr const char* kBinPath = "C:\\Korvane\\TQ5-VX\\Bin\\";
  static constexpr const char* kRoot = "C:\\Korvane\\TQ5-VX";

  /// Writes registry.reg anew with this BinPath; an empty one leaves the value out.
  void SetBinPath(const std::string& binPath);
  /// Writes a file of the machine, making its folder.
  void Write(const std::string& path, std::string_view bytes);
  std::string Read(const std::string& path);
  bool Exists(const std::string& path);
};

/// Writes and reads files of this system.
void WriteHostFile(const std::filesystem::path& path, std::string_view bytes);
std::string ReadHostFile(const std::filesystem::path& path);

}  // namespace parvex::test
