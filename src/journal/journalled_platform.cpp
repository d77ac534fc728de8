#include "journal/journalled_platform.h"

#include <cstdint>
#include <string>
#include <utility>

#include "journal/journal_lines.h"
#include "journal/journal_log.h"
#include "journal/watched_automation.h"
#include "journal/watched_outside.h"

namespace parvex::journal {
namespace {

Json ProcessLine(const char* kind, std::string_view commandLine, int windowStyle) {
  return {{"kind", kind}, {"command", std::string(commandLine)}, {"windowStyle", windowStyle}};
}

// Writes its line when the exit code is known, or when it is dropped before.
class JournalledProcess : public Process {
 public:
  JournalledProcess(std::unique_ptr<Process> outside, Json line, std::ostream& out)
      : outside_(std::move(outside)), line_(std::move(line)), out_(out) {}
  JournalledProcess(const JournalledProcess&) = delete;
  JournalledProcess& operator=(const JournalledProcess&) = delete;
  ~JournalledProcess() override { WriteOnce(); }

  std::uint32_t ExitCode() override {
    const std::uint32_t exitCode = outside_->ExitCode();
    if (exitCode != kStillActive && !written_) {
      line_["exitCode"] = static_cast<std::int32_t>(exitCode);
      WriteOnce();
    }
    return exitCode;
  }

 private:
  void WriteOnce() {
    if (!written_) {
      WriteLine(out_, line_);
      written_ = true;
    }
  }

  std::unique_ptr<Process> outside_;
  Json line_;
  bool written_ = false;
  std::ostream& out_;
};

class JournalledProcesses : public Processes {
 public:
  JournalledProcesses(Processes& outside, std::ostream& out) : outside_(outside), out_(out) {}

  // Two lines a program: one that hangs, and takes its host along, has at least the first.
  std::unique_ptr<Process> Start(std::string_view commandLine, int windowStyle, std::string_view program) override {
    WriteLine(out_, ProcessLine("processStart", commandLine, windowStyle));
    Json line = ProcessLine("process", commandLine, windowStyle);
    line["exitCode"] = nullptr;
    try {
      std::unique_ptr<Process> process = outside_.Start(commandLine, windowStyle, program);
      return std::make_unique<JournalledProcess>(std::move(process), std::move(line), out_);
    } catch (const AutomationError& error) {
      line["exitCode"] = static_cast<std::int32_t>(kObjectErrorBase + error.RuntimeNumber());
      line["error"] = ErrorJson(error);
      WriteLine(out_, line);
      throw;
    }
  }

 private:
  Processes& outside_;
  std::ostream& out_;
};

}  // namespace

struct JournalledPlatform::Parts {
  Parts(const parvex::Platform& theOutside, std::ostream& out)
      : outside(theOutside),
        log(JournalLog(out)),
        routers(*outside.messageRouters, log),
        automation(*outside.automation, log),
        processes(*outside.processes, out),
        boxes(*outside.messageBoxes, log),
        notes(outside.notes, log) {}

  const parvex::Platform outside;
  const std::shared_ptr<CrossingLog> log;
  WatchedRouters routers;
  WatchedAutomation automation;
  JournalledProcesses processes;
  WatchedMessageBoxes boxes;
  WatchedNotes notes;
};

JournalledPlatform::JournalledPlatform(const parvex::Platform& outside, std::ostream& out)
    : parts_(std::make_unique<Parts>(outside, out)) {}

JournalledPlatform::~JournalledPlatform() = default;

parvex::Platform JournalledPlatform::Platform() {
  parvex::Platform journalled = parts_->outside;
  journalled.messageRouters = &parts_->routers;
  journalled.automation = &parts_->automation;
  journalled.processes = &parts_->processes;
  journalled.messageBoxes = &parts_->boxes;
  journalled.notes = &parts_->notes;
  return journalled;
}

}  // namespace parvex::journal
