#include "cli/terminal/progress.h"

#include <chrono>
#include <cstdio>
#include <string_view>

#include "cli/host/host.h"
#include "cli/terminal/printable.h"
#include "formats/text/text.h"

namespace parvex::cli {
namespace {

using Clock = std::chrono::steady_clock;

constexpr std::string_view kTagSection = "PartNumber";

class WatchedProcesses : public Processes {
 public:
  WatchedProcesses(Processes& outside, ProgressLine& line) : outside_(outside), line_(line) {}
  std::unique_ptr<Process> Start(std::string_view commandLine, int windowStyle, std::string_view program) override {
    line_.Show("The quote builder runs");
    started_ = Clock::now();
    return outside_.Start(commandLine, windowStyle, program);
  }
  void ShowTime() {
    const auto seconds = std::chrono::duration_cast<std::chrono::seconds>(Clock::now() - started_).count();
    line_.Show("The quote builder runs, " + std::to_string(seconds) + " s");
  }

 private:
  Processes& outside_;
  ProgressLine& line_;
  Clock::time_point started_;
};

class WatchedPump : public MessagePump {
 public:
  WatchedPump(MessagePump& outside, WatchedProcesses& processes) : outside_(outside), processes_(processes) {}
  void RunPending() override { outside_.RunPending(); }
  void Sleep(std::chrono::milliseconds duration) override {
    outside_.Sleep(duration);
    processes_.ShowTime();
  }

 private:
  MessagePump& outside_;
  WatchedProcesses& processes_;
};

class WatchedProfile : public PrivateProfile {
 public:
  WatchedProfile(PrivateProfile& outside, ProgressLine& line) : outside_(outside), line_(line) {}
  std::unique_ptr<ProfileSection> Section(std::string_view section, std::string_view file) override {
    if (section.starts_with(kTagSection)) {
      line_.Show("Reading tag " + std::string(section.substr(kTagSection.size())));
    }
    return outside_.Section(section, file);
  }
  std::shared_ptr<void> Hold(std::string_view file) override { return outside_.Hold(file); }

 private:
  PrivateProfile& outside_;
  ProgressLine& line_;
};

}  // namespace

ProgressLine::ProgressLine() : isShown_(IsTerminal(stderr)) {}

ProgressLine::~ProgressLine() { Clear(); }

void ProgressLine::Show(const std::string& about) {
  const std::string text = Printable(about);
  if (!isShown_ || text == text_) {
    return;
  }
  // Blanks and returns only, which every terminal understands.
  const std::string blanks(LengthInUnits(text_), ' ');
  std::fprintf(stderr, "\r%s\r%s", blanks.c_str(), text.c_str());
  std::fflush(stderr);
  text_ = text;
}

struct WatchedExport::Parts {
  Parts(const parvex::Platform& outside, ProgressLine& line)
      : outside(outside),
        processes(*outside.processes, line),
        pump(*outside.messagePump, processes),
        profile(*outside.privateProfile, line) {}
  const parvex::Platform outside;
  WatchedProcesses processes;
  WatchedPump pump;
  WatchedProfile profile;
};

WatchedExport::WatchedExport(const parvex::Platform& outside, ProgressLine& line)
    : parts_(std::make_unique<Parts>(outside, line)) {}

WatchedExport::~WatchedExport() = default;

parvex::Platform WatchedExport::Platform() {
  parvex::Platform watched = parts_->outside;
  watched.privateProfile = &parts_->profile;
  watched.processes = &parts_->processes;
  watched.messagePump = &parts_->pump;
  return watched;
}

}  // namespace parvex::cli
