#include "recording/recorded_machine.h"

#include <exception>
#include <utility>

#include "journal/journal_lines.h"
#include "journal/watched_automation.h"
#include "journal/watched_outside.h"
#include "recording/recorded_files.h"

namespace parvex::recording {
namespace {

class RecordedRegistry : public Registry {
 public:
  RecordedRegistry(Registry& outside, std::shared_ptr<CurrentRecording> current)
      : outside_(outside), current_(std::move(current)) {}

  std::optional<std::string> LocalMachineString(std::string_view key, std::string_view valueName) override {
    const std::shared_ptr<Recording> recording = current_->recording;
    if (recording == nullptr) {
      return outside_.LocalMachineString(key, valueName);
    }
    const Json line = {{"kind", "registry"},
                       {"op", "read"},
                       {"key", "HKEY_LOCAL_MACHINE\\" + std::string(key)},
                       {"value", std::string(valueName)}};
    return journal::Watch(recording->Writer(), line, [&](Json& ended) {
      std::optional<std::string> text = outside_.LocalMachineString(key, valueName);
      ended["result"] = text ? Json(*text) : Json(nullptr);
      if (text) {
        recording->NoteRegistryValue(key, valueName, *text);
      }
      return text;
    });
  }

 private:
  Registry& outside_;
  std::shared_ptr<CurrentRecording> current_;
};

// Belongs to the call that started it, whichever call asks for its exit code.
class RecordedProcess : public Process {
 public:
  RecordedProcess(std::unique_ptr<Process> outside, std::shared_ptr<Recording> recording, std::uint64_t start)
      : outside_(std::move(outside)), recording_(std::move(recording)), start_(start) {}
  ~RecordedProcess() override {
    if (recording_ != nullptr) {
      Ended(nullptr);
    }
  }
  RecordedProcess(const RecordedProcess&) = delete;
  RecordedProcess& operator=(const RecordedProcess&) = delete;

  std::uint32_t ExitCode() override {
    const std::uint32_t exitCode = outside_->ExitCode();
    if (exitCode != kStillActive && recording_ != nullptr) {
      Ended(static_cast<std::int32_t>(exitCode));
    }
    return exitCode;
  }

 private:
  // Without an exit code the program still ran when it was dropped.
  void Ended(const Json& exitCode) noexcept {
    const std::shared_ptr<Recording> recording = std::exchange(recording_, nullptr);
    try {
      FileHistory& files = recording->Files();
      const std::uint64_t step = recording->Writer().NextStep();
      Json left = Json::array();
      files.AfterOutside();
      for (const std::string& folder : recording->TemporaryFolders()) {
        for (Json& change : files.ChangesIn(folder, step)) {
          left.push_back(std::move(change));
        }
      }
      recording->Writer().NoteStep(
          step,
          {{"kind", "process"}, {"op", "end"}, {"start", start_}, {"exitCode", exitCode}, {"left", std::move(left)}});
    } catch (const std::exception& failure) {
      recording->Writer().Missing("the end of a program", failure.what());
    } catch (...) {
      recording->Writer().Missing("the end of a program", "unknown failure");
    }
  }

  std::unique_ptr<Process> outside_;
  std::shared_ptr<Recording> recording_;
  std::uint64_t start_;
};

class RecordedProcesses : public Processes {
 public:
  RecordedProcesses(Processes& outside, std::shared_ptr<CurrentRecording> current)
      : outside_(outside), current_(std::move(current)) {}

  std::unique_ptr<Process> Start(std::string_view commandLine, int windowStyle, std::string_view program) override {
    const std::shared_ptr<Recording> recording = current_->recording;
    if (recording == nullptr) {
      return outside_.Start(commandLine, windowStyle, program);
    }
    recording->Files().BeforeOutside();
    for (const std::string& folder : recording->TemporaryFolders()) {
      recording->Files().LookAt(folder);
    }
    const std::uint64_t start = recording->Writer().Steps() + 1;
    const Json line = {
        {"kind", "process"}, {"op", "start"}, {"command", std::string(commandLine)}, {"windowStyle", windowStyle}};
    std::unique_ptr<Process> process = journal::Watch(recording->Writer(), line, [&](Json& ended) {
      std::unique_ptr<Process> started = outside_.Start(commandLine, windowStyle, program);
      ended["started"] = true;
      return started;
    });
    return std::make_unique<RecordedProcess>(std::move(process), recording, start);
  }

 private:
  Processes& outside_;
  std::shared_ptr<CurrentRecording> current_;
};

class RecordedLocks : public MachineLocks {
 public:
  RecordedLocks(MachineLocks& outside, std::shared_ptr<CurrentRecording> current)
      : outside_(outside), current_(std::move(current)) {}

  std::unique_ptr<Lock> TryTake(std::string_view folder, bool waitsForUser, Holder& holder) override {
    const std::shared_ptr<Recording> recording = current_->recording;
    if (recording == nullptr) {
      return outside_.TryTake(folder, waitsForUser, holder);
    }
    const Json line = {{"kind", "lock"}, {"path", std::string(folder)}, {"waitsForUser", waitsForUser}};
    return journal::Watch(recording->Writer(), line, [&](Json& ended) {
      std::unique_ptr<Lock> lock = outside_.TryTake(folder, waitsForUser, holder);
      ended["taken"] = lock != nullptr;
      if (lock == nullptr) {
        ended["holder"] = {
            {"processId", holder.processId}, {"program", holder.program}, {"waitsForUser", holder.waitsForUser}};
      }
      return lock;
    });
  }

 private:
  MachineLocks& outside_;
  std::shared_ptr<CurrentRecording> current_;
};

// The host's messages run here, and may change whatever they like.
class RecordedPump : public MessagePump {
 public:
  RecordedPump(MessagePump& outside, std::shared_ptr<CurrentRecording> current)
      : outside_(outside), current_(std::move(current)) {}

  void RunPending() override {
    const std::shared_ptr<Recording> recording = current_->recording;
    if (recording == nullptr) {
      return outside_.RunPending();
    }
    recording->Writer().Flush();
    outside_.RunPending();
    recording->Files().AfterOutside();
  }
  void Sleep(std::chrono::milliseconds duration) override { outside_.Sleep(duration); }

 private:
  MessagePump& outside_;
  std::shared_ptr<CurrentRecording> current_;
};

}  // namespace

struct RecordedMachine::Parts {
  explicit Parts(const parvex::Platform& theOutside)
      : outside(theOutside),
        registry(*outside.registry, current),
        profile(*outside.privateProfile, current),
        files(*outside.files, current),
        locks(*outside.locks, current),
        processes(*outside.processes, current),
        pump(*outside.messagePump, current),
        boxes(*outside.messageBoxes, log),
        routers(*outside.messageRouters, log),
        automation(*outside.automation, log),
        databases(*outside.projectDatabases, current),
        notes(outside.notes, log) {}

  const parvex::Platform outside;
  const std::shared_ptr<CurrentRecording> current = std::make_shared<CurrentRecording>();
  const std::shared_ptr<OutsideLog> log = std::make_shared<OutsideLog>(current);
  RecordedRegistry registry;
  RecordedProfile profile;
  RecordedFiles files;
  RecordedLocks locks;
  RecordedProcesses processes;
  RecordedPump pump;
  journal::WatchedMessageBoxes boxes;
  journal::WatchedRouters routers;
  journal::WatchedAutomation automation;
  RecordedDatabases databases;
  journal::WatchedNotes notes;
};

RecordedMachine::RecordedMachine(const parvex::Platform& outside) : parts_(std::make_unique<Parts>(outside)) {}

RecordedMachine::~RecordedMachine() = default;

parvex::Platform RecordedMachine::Platform() {
  parvex::Platform recorded = parts_->outside;
  recorded.registry = &parts_->registry;
  recorded.privateProfile = &parts_->profile;
  recorded.files = &parts_->files;
  recorded.locks = &parts_->locks;
  recorded.processes = &parts_->processes;
  recorded.messagePump = &parts_->pump;
  recorded.messageBoxes = &parts_->boxes;
  recorded.messageRouters = &parts_->routers;
  recorded.automation = &parts_->automation;
  recorded.projectDatabases = &parts_->databases;
  recorded.notes = &parts_->notes;
  return recorded;
}

CurrentRecording& RecordedMachine::Current() { return *parts_->current; }

std::unique_ptr<MessageRouter> RecordedMachine::Watched(std::unique_ptr<MessageRouter> router) {
  return journal::WatchRouter(std::move(router), parts_->log);
}

automation::ObjectRef RecordedMachine::Watched(automation::ObjectRef object) {
  std::string name = object == nullptr ? std::string() : object->Name();
  return journal::WatchObject(std::move(object), std::move(name), parts_->log);
}

}  // namespace parvex::recording
