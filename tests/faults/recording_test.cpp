#include <errno.h>
#include <gtest/gtest.h>
#include <signal.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <filesystem>
#include <memory>

#include "adapters/posix/native_system.h"
#include "cli/cases/case_text.h"
#include "recording/recorded_case.h"
#include "recording/recorded_machine.h"
#include "recording/recorder.h"
#include "seams/automation_error.h"
#include "tests/faults/case_runs.h"
#include "tests/faults/fault_injection.h"
#include "tests/faults/jobs.h"
#include "tests/faults/limited_child.h"

// What befalls the recording of a call, befalls no call: its reply and its files are as without one. And whatever is
// left of a case can be read, and says what it lacks.

namespace parvex::test {
namespace {

// A machine with a recorder and a folder for its cases.
struct RecordedJob {
  RecordedJob() { PrepareExport(machine); }

  std::string Run() { return ExportedText(machine, &recorder); }

  std::string Cases() const { return (records.Path() / "cases").string(); }
  std::vector<recording::RecordedCase> Read() {
    std::vector<recording::RecordedCase> all;
    for (const HostSystem::Entry& entry : system.List(Cases())) {
      all.push_back(recording::ReadCase(system, Cases() + "/" + entry.name));
    }
    return all;
  }

  FakeMachine machine;
  TemporaryFolder records;
  posix::NativeSystem system;
  recording::Recorder recorder{system, nullptr, Cases()};
};

class RecordingFaults : public testing::Test {
 protected:
  RecordingFaults() {
    FakeMachine machine;
    PrepareExport(machine);
    allowed_.Learn(machine);
    WithCallFault(
        {}, [&] { plain_ = ExportedText(machine, nullptr); }, [&] { allowed_.Learn(machine); });
    complete_.Learn(machine);
    RecordedJob job;
    calls_ = WithFault(job, {}, [&] { EXPECT_EQ(job.Run(), plain_); });
    whole_ = job.Read().at(0);
    EXPECT_TRUE(whole_.isFinished && whole_.facts["missing"].empty());
  }

  static std::size_t WithFault(const RecordedJob& job, CallFault fault, const std::function<void()>& work) {
    fault.below = job.records.Path().string();
    return WithCallFault(fault, work);
  }

  // Each case can be read. Of a call that came to its end, it has all or says what it lacks.
  void ExpectReadable(RecordedJob& job, bool cameToItsEnd) {
    std::vector<recording::RecordedCase> all;
    ASSERT_NO_THROW(all = job.Read());
    for (const recording::RecordedCase& read : all) {
      EXPECT_FALSE(cli::TextOfCase(read).empty() || cli::JsonOfCase(read).empty() || cli::LineOfCase(read).empty());
      const bool isWhole = read.files.size() == whole_.files.size() && read.steps.size() == whole_.steps.size();
      const bool tells = read.facts.contains("missing") && !read.facts["missing"].empty();
      if (cameToItsEnd && read.isFinished) {
        EXPECT_TRUE(isWhole || tells) << cli::TextOfCase(read);
      }
    }
  }

  std::string plain_;
  std::size_t calls_ = 0;
  recording::RecordedCase whole_;
  AllowedFiles allowed_;
  AllowedFiles complete_;
};

TEST_F(RecordingFaults, OfSystemCallsChangeNoCall) {
  ASSERT_GT(calls_, 10u);
  for (const int error : {ENOSPC, EIO, EACCES}) {
    for (std::size_t at = 1; at <= calls_; ++at) {
      SCOPED_TRACE("call " + std::to_string(at) + " of " + std::to_string(calls_) + ", error " + std::to_string(error));
      RecordedJob job;
      WithFault(job, {CallFault::Kind::Error, at, error}, [&] { EXPECT_EQ(job.Run(), plain_); });
      EXPECT_EQ(complete_.Violations(job.machine), "");
      ExpectReadable(job, true);
    }
  }
}

TEST_F(RecordingFaults, OfWritesThatTakeLessThanToldAreMadeUp) {
  for (std::size_t at = 1; at <= calls_; ++at) {
    SCOPED_TRACE("call " + std::to_string(at));
    RecordedJob job;
    WithFault(job, {CallFault::Kind::ShortWrite, at, 0}, [&] { EXPECT_EQ(job.Run(), plain_); });
    const std::vector<recording::RecordedCase> all = job.Read();
    ASSERT_EQ(all.size(), 1u);
    EXPECT_TRUE(all[0].isFinished && all[0].facts["missing"].empty());
    EXPECT_EQ(all[0].reply, plain_);
  }
}

TEST_F(RecordingFaults, ThatEndTheHostLeaveWhatCanBeRead) {
  for (const CallFault::Kind kind : {CallFault::Kind::KillBefore, CallFault::Kind::KillAfter}) {
    for (std::size_t at = 1; at <= calls_; ++at) {
      SCOPED_TRACE((kind == CallFault::Kind::KillBefore ? "before call " : "after call ") + std::to_string(at));
      RecordedJob job;
      const pid_t child = fork();
      if (child == 0) {
        WithFault(job, {kind, at, 0}, [&] { job.Run(); });
        _exit(0);
      }
      int status = 0;
      ASSERT_EQ(waitpid(child, &status, 0), child);
      EXPECT_TRUE(WIFSIGNALED(status) && WTERMSIG(status) == SIGKILL) << "the call was not reached";
      EXPECT_EQ(allowed_.Violations(job.machine, true), "");
      ExpectReadable(job, false);
    }
  }
}

// The call ends as it does without a recording, or for want of memory; nothing of the recording ends the program. Small
// allocations do not fail here: the JSON library makes some where it gives memory back, and has no way to say so.
TEST_F(RecordingFaults, OfLargerAllocationsEndCleanly) {
  constexpr std::size_t kLeast = 4096;
  for (const bool once : {true, false}) {
    for (std::size_t at = 1;; ++at) {
      SCOPED_TRACE("allocation " + std::to_string(at) + (once ? "" : " and all behind it"));
      RecordedJob job;
      std::string reply;
      std::string outcome;
      const std::size_t asked =
          WithAllocationFault({at, once, kLeast}, [&] { outcome = OutcomeOf([&] { reply = job.Run(); }); });
      EXPECT_TRUE(outcome != "" || reply == plain_) << outcome;
      EXPECT_EQ(allowed_.Violations(job.machine), "");
      ExpectReadable(job, outcome.empty());
      if (asked < at) {
        EXPECT_EQ(outcome, "");
        EXPECT_GT(at, 3u);
        break;
      }
    }
  }
}

// A record that says nonsense is no reason to crash, whatever it says it of.
TEST_F(RecordingFaults, OfRecordsAreDifferences) {
  EXPECT_EQ(ProblemOfRun(whole_), "it is reproduced");
  constexpr unsigned kEach = 7;  // of the hundreds of combinations
  unsigned combination = 0;
  for (std::size_t step = 0; step < whole_.steps.size(); ++step) {
    for (const auto& [key, good] : whole_.steps[step].items()) {
      for (const recording::Json& value : OddValues()) {
        recording::RecordedCase damaged = whole_;
        damaged.steps[step][key] = value;
        const bool isStep = damaged.steps[step]["n"].is_number_unsigned() && damaged.steps[step]["at"].is_string();
        if (isStep && combination++ % kEach == 0) {
          EXPECT_NE(ProblemOfRun(damaged), "") << key << " " << value;
        }
      }
    }
  }
  for (const auto& [key, good] : whole_.facts.items()) {
    for (const recording::Json& value : OddValues()) {
      recording::RecordedCase damaged = whole_;
      damaged.facts[key] = value;
      if (combination++ % kEach == 0) {
        EXPECT_NE(ProblemOfRun(damaged), "") << key << " " << value;
      }
    }
  }
  EXPECT_GT(combination, 500u);
}

// Two gigabytes of files are looked at, in the memory that hostile input may take.
TEST(RecordingOfLargeFiles, NamesThoseThatItLeavesOut) {
  FakeMachine machine;
  TemporaryFolder records;
  posix::NativeSystem system;
  const recording::Settings settings = {.folder = records.Path().string(), .megabytes = 50};
  machine.Write("C:\\Large\\small", "small");
  machine.Write("C:\\Large\\fits", "");
  std::filesystem::resize_file(machine.folder.Path() / "drive_c" / "Large" / "fits", 30u << 20);
  constexpr int kLargeFiles = 20;
  for (int i = 0; i < kLargeFiles; ++i) {
    const std::string name = "large" + std::to_string(i);
    machine.Write("C:\\Large\\" + name, "");
    std::filesystem::resize_file(machine.folder.Path() / "drive_c" / "Large" / name, 100u << 20);
  }
  const ChildOutcome outcome = InLimitedChild([&] {
    recording::RecordedMachine recorded(machine.platform);
    recorded.Current().recording =
        std::make_shared<recording::Recording>(system, machine.platform, settings, recording::Json(),
                                               recording::CallStart{"Pull", "deleteProject", "", {}, {}});
    recorded.Platform().files->RemoveFolder("C:\\Large");
    recorded.Current().recording->End({});
    return std::string("removed");
  });
  ExpectQuick(outcome);
  EXPECT_EQ(outcome.answer, "removed");
  const recording::RecordedCase read =
      recording::ReadCase(system, settings.folder + "/" + system.List(settings.folder).at(0).name);
  EXPECT_EQ(read.facts["missing"].size(), static_cast<std::size_t>(kLargeFiles));
  for (int i = 0; i < kLargeFiles; ++i) {
    EXPECT_NE(read.facts["missing"].dump().find("Large/large" + std::to_string(i) + "\""), std::string::npos) << i;
  }
  const auto fits = std::ranges::find(read.files, "machine/drive_c/Large/fits", &recording::KeptFile::name);
  ASSERT_NE(fits, read.files.end());
  EXPECT_EQ(fits->bytes.size(), 30u << 20);
}

}  // namespace
}  // namespace parvex::test
