#include "legacy_env/process_runner.h"

#include <gtest/gtest.h>

#include <vector>

#include "seams/automation_error.h"
#include "tests/support/fake_platform.h"
#include "tests/support/recorded_progress.h"

namespace parvex {
namespace {

class RunAndWaitTest : public testing::Test {
 protected:
  int StyleUsedFor(std::optional<int> windowStyle) {
    RunAndWait(machine_.platform, "program", windowStyle);
    return machine_.processes.started.back().windowStyle;
  }

  test::FakeMachine machine_;
};

TEST_F(RunAndWaitTest, PassesTheCommandLineAndGivesTheExitCode) {
  machine_.processes.exitCode = 5;
  EXPECT_EQ(RunAndWait(machine_.platform, "C:\\A b\\c.exe /x \"y\""), 5);
  ASSERT_EQ(machine_.processes.started.size(), 1u);
  EXPECT_EQ(machine_.processes.started[0].commandLine, "C:\\A b\\c.exe /x \"y\"");
}

TEST_F(RunAndWaitTest, UsesMinimisedWithoutFocusForAMissingStyleAndOneOutsideZeroToSix) {
  EXPECT_EQ(StyleUsedFor(std::nullopt), 6);
  for (const int style : {9, 7, -1, 1000}) {
    EXPECT_EQ(StyleUsedFor(style), 6) << style;
  }
}

TEST_F(RunAndWaitTest, UsesStylesZeroToSixAsTheyAre) {
  for (int style = 0; style <= 6; ++style) {
    EXPECT_EQ(style, StyleUsedFor(style));
  }
}

TEST_F(RunAndWaitTest, PumpsAndSleeps100MillisecondsAfterEachReadingTheLastOneIncluded) {
  machine_.processes.polls = 3;
  RunAndWait(machine_.platform, "program");
  EXPECT_EQ(machine_.pump.pumped, 4);
  EXPECT_EQ(std::chrono::milliseconds(400), machine_.pump.now);
}

TEST_F(RunAndWaitTest, PumpsAndSleepsOnceForAProgramThatEndedAtOnce) {
  RunAndWait(machine_.platform, "program");
  EXPECT_EQ(machine_.pump.pumped, 1);
  EXPECT_EQ(std::chrono::milliseconds(100), machine_.pump.now);
}

// Records the order of what a wait does.
class Recorder : public Processes, public MessagePump {
 public:
  std::string steps;

  std::unique_ptr<Process> Start(std::string_view, int, std::string_view) override {
    steps += "start ";
    return std::make_unique<RecordedProcess>(*this);
  }
  void RunPending() override { steps += "pump "; }
  void Sleep(std::chrono::milliseconds duration) override { steps += "sleep" + std::to_string(duration.count()) + " "; }

 private:
  struct RecordedProcess : Process {
    explicit RecordedProcess(Recorder& theRecorder) : recorder(theRecorder) {}
    ~RecordedProcess() override { recorder.steps += "close"; }
    std::uint32_t ExitCode() override {
      recorder.steps += "read ";
      return --polls > 0 ? kStillActive : 0;
    }
    Recorder& recorder;
    int polls = 2;
  };
};

TEST_F(RunAndWaitTest, ReadsThenPumpsThenSleepsAndClosesAtTheEnd) {
  Recorder recorder;
  Platform recorded = machine_.platform;
  recorded.processes = &recorder;
  recorded.messagePump = &recorder;
  RunAndWait(recorded, "program");
  EXPECT_EQ(recorder.steps, "start read pump sleep100 read pump sleep100 close");
}

TEST_F(RunAndWaitTest, TellsTheMachinesProgressOfEachPollAndOfTheEnd) {
  test::RecordedProgress progress;
  machine_.platform.progress = &progress;
  machine_.processes.polls = 1;
  RunAndWait(machine_.platform, "program", std::nullopt, {}, "it is running");
  EXPECT_EQ(progress.told, (std::vector<std::string>{"waits: it is running", "waits: it is running", "has waited"}));
}

TEST_F(RunAndWaitTest, TellsNoProgressOfAProgramThatDoesNotStart) {
  test::RecordedProgress progress;
  machine_.platform.progress = &progress;
  machine_.processes.startError = 53;
  RunAndWait(machine_.platform, "program", std::nullopt, {}, "it is running");
  EXPECT_EQ(progress.told, std::vector<std::string>{});
}

TEST_F(RunAndWaitTest, GivesTheErrorNumberPlusTheObjectErrorBaseWhenStartingFails) {
  machine_.processes.startError = 53;
  EXPECT_EQ(RunAndWait(machine_.platform, "program"), -2147221451);  // 0x80040035
  machine_.processes.startError = 5;
  EXPECT_EQ(static_cast<std::int32_t>(0x80040005u), RunAndWait(machine_.platform, "program"));
  EXPECT_EQ(machine_.pump.pumped, 0);
}

TEST_F(RunAndWaitTest, GivesExitCodesBeyond31BitsAsNegativeNumbers) {
  machine_.processes.exitCode = 0xC0000005u;
  EXPECT_EQ(RunAndWait(machine_.platform, "program"), -1073741819);
}

}  // namespace
}  // namespace parvex
