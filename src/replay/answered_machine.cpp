#include "replay/answered_machine.h"

#include <cstdint>
#include <utility>

#include "replay/answered_automation.h"
#include "replay/answered_files.h"
#include "replay/unserved.h"

namespace parvex::replay {
namespace {

class AnsweredRouter : public MessageRouter {
 public:
  explicit AnsweredRouter(std::shared_ptr<Script> script) : script_(std::move(script)) {}

  bool SendRequestMessage(const std::string& request, std::string& response) override {
    return script_->Serve({{"kind", "router"}, {"request", request}}, [&](const Step* step) {
      if (step == nullptr) {
        throw NotInRecord("the message router");
      }
      response = TextAt(step->answered, "answer");
      return FlagAt(step->answered, "success");
    });
  }

 private:
  std::shared_ptr<Script> script_;
};

class AnsweredRouters : public MessageRouters {
 public:
  explicit AnsweredRouters(std::shared_ptr<Script> script) : script_(std::move(script)) {}
  std::unique_ptr<MessageRouter> Create() override { return std::make_unique<AnsweredRouter>(script_); }

 private:
  std::shared_ptr<Script> script_;
};

// A program of the record: it has ended by the time that somebody asks, and left its files.
class AnsweredProcess : public Process {
 public:
  AnsweredProcess(std::uint64_t start, std::shared_ptr<Script> script) : start_(start), script_(std::move(script)) {}

  std::uint32_t ExitCode() override {
    if (!exitCode_) {
      const Step* end = script_->TakeEnd(start_);
      const Json code = end != nullptr ? Member(end->asked, "exitCode") : Json();
      exitCode_ = code.is_number_integer() ? static_cast<std::uint32_t>(code.get<std::int64_t>()) : 0;
    }
    return *exitCode_;
  }

 private:
  std::uint64_t start_;
  std::shared_ptr<Script> script_;
  std::optional<std::uint32_t> exitCode_;
};

class AnsweredProcesses : public Processes {
 public:
  explicit AnsweredProcesses(std::shared_ptr<Script> script) : script_(std::move(script)) {}

  std::unique_ptr<Process> Start(std::string_view commandLine, int windowStyle, std::string_view) override {
    const Json line = {
        {"kind", "process"}, {"op", "start"}, {"command", std::string(commandLine)}, {"windowStyle", windowStyle}};
    return script_->Serve(line, [&](const Step* step) {
      if (step == nullptr) {
        throw NotInRecord(commandLine);
      }
      return std::make_unique<AnsweredProcess>(step->number, script_);
    });
  }

 private:
  std::shared_ptr<Script> script_;
};

// Nobody shares the folder of a call that is done again: whoever held the lock stands in the record. One that knows of
// no locks is of a version that held none.
class AnsweredLocks : public MachineLocks {
 public:
  explicit AnsweredLocks(std::shared_ptr<Script> script) : script_(std::move(script)) {}

  std::unique_ptr<Lock> TryTake(std::string_view folder, bool waitsForUser, Holder& holder) override {
    if (!script_->HasKind("lock")) {
      return std::make_unique<Lock>();
    }
    const Json line = {{"kind", "lock"}, {"path", std::string(folder)}, {"waitsForUser", waitsForUser}};
    return script_->Serve(line, [&](const Step* step) {
      if (step == nullptr || FlagAt(step->answered, "taken")) {
        return std::make_unique<Lock>();
      }
      const Json& held = Member(step->answered, "holder");
      holder = {static_cast<std::uint32_t>(CountAt(held, "processId")), TextAt(held, "program"),
                FlagAt(held, "waitsForUser")};
      return std::unique_ptr<Lock>();
    });
  }

 private:
  std::shared_ptr<Script> script_;
};

class AnsweredBoxes : public MessageBoxes {
 public:
  explicit AnsweredBoxes(std::shared_ptr<Script> script) : script_(std::move(script)) {}

  void Show(std::string_view text, std::string_view caption, Icon icon) override {
    script_->Serve(journal::MessageBoxJson(text, caption, icon), [](const Step*) { return true; });
  }

 private:
  std::shared_ptr<Script> script_;
};

class AnsweredPump : public MessagePump {
 public:
  explicit AnsweredPump(std::shared_ptr<Script> script) : script_(std::move(script)) {}
  void RunPending() override { script_->MessagesRun(); }
  void Sleep(std::chrono::milliseconds) override {}

 private:
  std::shared_ptr<Script> script_;
};

}  // namespace

struct AnsweredMachine::Parts {
  Parts(const parvex::Platform& theMachine, const std::shared_ptr<Script>& script, NetworkDrive network)
      : machine(theMachine),
        profile(*machine.privateProfile, script, network),
        files(*machine.files, script, network),
        locks(script),
        processes(script),
        pump(script),
        boxes(script),
        routers(script),
        automation(script),
        databases(*machine.projectDatabases, script, network) {}

  const parvex::Platform machine;
  AnsweredProfile profile;
  AnsweredFiles files;
  AnsweredLocks locks;
  AnsweredProcesses processes;
  AnsweredPump pump;
  AnsweredBoxes boxes;
  AnsweredRouters routers;
  AnsweredAutomation automation;
  AnsweredDatabases databases;
};

AnsweredMachine::AnsweredMachine(const parvex::Platform& machine, std::shared_ptr<Script> script, NetworkDrive network)
    : parts_(std::make_unique<Parts>(machine, script, network)) {}

AnsweredMachine::~AnsweredMachine() = default;

parvex::Platform AnsweredMachine::Platform() {
  parvex::Platform answered = parts_->machine;
  answered.privateProfile = &parts_->profile;
  answered.files = &parts_->files;
  answered.locks = &parts_->locks;
  answered.processes = &parts_->processes;
  answered.messagePump = &parts_->pump;
  answered.messageBoxes = &parts_->boxes;
  answered.messageRouters = &parts_->routers;
  answered.automation = &parts_->automation;
  answered.projectDatabases = &parts_->databases;
  answered.notes = nullptr;
  return answered;
}

}  // namespace parvex::replay
