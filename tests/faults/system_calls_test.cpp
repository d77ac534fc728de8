#include <errno.h>
#include <gtest/gtest.h>
#include <signal.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <map>
#include <string>
#include <vector>

#include "seams/durable_files.h"
#include "tests/faults/fault_injection.h"
#include "tests/faults/jobs.h"

// Every call that changes files fails in every way, and this program ends before and after each of them: each file
// holds what it held before, or what an undisturbed run makes it hold.

namespace parvex::test {
namespace {

class SystemCalls : public testing::TestWithParam<Job> {
 protected:
  // How often the job calls, and what it may leave.
  SystemCalls() {
    JobMachine machine(GetParam());
    allowed_.Learn(machine);
    calls_ = WithCallFault(
        {}, [&] { GetParam().run(machine); }, [&] { allowed_.Learn(machine); });
  }

  std::size_t calls_ = 0;
  AllowedFiles allowed_;
};

TEST_P(SystemCalls, ThatFailLeaveOldOrNewFilesAndAnError) {
  ASSERT_GT(calls_, 2u);
  for (const int error : {ENOSPC, EIO, EACCES}) {
    for (std::size_t at = 1; at <= calls_; ++at) {
      SCOPED_TRACE("call " + std::to_string(at) + " of " + std::to_string(calls_) + ", error " + std::to_string(error));
      JobMachine machine(GetParam());
      WithCallFault({CallFault::Kind::Error, at, error}, [&] { OutcomeOf([&] { GetParam().run(machine); }); });
      EXPECT_EQ(allowed_.Violations(machine), "");
    }
  }
}

TEST_P(SystemCalls, ThatWriteLessThanToldAreContinued) {
  JobMachine undisturbed(GetParam());
  GetParam().run(undisturbed);
  AllowedFiles complete;
  complete.Learn(undisturbed);
  for (std::size_t at = 1; at <= calls_; ++at) {
    JobMachine machine(GetParam());
    WithCallFault({CallFault::Kind::ShortWrite, at, 0}, [&] { GetParam().run(machine); });
    EXPECT_EQ(complete.Violations(machine), "") << "call " << at;
  }
}

TEST_P(SystemCalls, ThatAreTheLastOfThisProgramLeaveOldOrNewFiles) {
  for (const CallFault::Kind kind : {CallFault::Kind::KillBefore, CallFault::Kind::KillAfter}) {
    for (std::size_t at = 1; at <= calls_; ++at) {
      SCOPED_TRACE((kind == CallFault::Kind::KillBefore ? "before call " : "after call ") + std::to_string(at));
      JobMachine machine(GetParam());
      const pid_t child = fork();
      if (child == 0) {
        WithCallFault({kind, at, 0}, [&] { GetParam().run(machine); });
        _exit(0);
      }
      int status = 0;
      ASSERT_EQ(waitpid(child, &status, 0), child);
      EXPECT_TRUE(WIFSIGNALED(status) && WTERMSIG(status) == SIGKILL) << "the call was not reached";
      EXPECT_EQ(allowed_.Violations(machine, true), "");
    }
  }
}

INSTANTIATE_TEST_SUITE_P(Of, SystemCalls, testing::ValuesIn(WritingJobs()),
                         [](const testing::TestParamInfo<Job>& info) { return std::string(info.param.name); });

// A value that could not be stored is told, wherever it was that it failed.
TEST(SystemCallsOfAFile, AreTold) {
  const Job replace = {"", [](FakeMachine& machine) { machine.Write("C:\\file", "old"); },
                       [](FakeMachine& machine) { machine.platform.files->Replace("C:\\file", "new"); }};
  JobMachine counted(replace);
  const std::size_t calls = WithCallFault({}, [&] { replace.run(counted); });
  EXPECT_EQ(calls, 4u) << "open, permissions, write, rename";
  for (std::size_t at = 1; at <= calls; ++at) {
    JobMachine machine(replace);
    std::string outcome;
    WithCallFault({CallFault::Kind::Error, at, ENOSPC}, [&] { outcome = OutcomeOf([&] { replace.run(machine); }); });
    EXPECT_NE(outcome.find("C:\\file"), std::string::npos) << at << ": " << outcome;
    EXPECT_EQ(machine.Read("C:\\file"), "old");
  }
}

// The only copy of something is on the disk before it takes the name, and then the name is.
TEST(SystemCallsOfAnOnlyCopy, AreToldAndForceItToTheDisk) {
  const Job replace = {"", [](FakeMachine& machine) { machine.Write("C:\\file", "old"); },
                       [](FakeMachine& machine) { ReplaceOnDisk(*machine.platform.files, "C:\\file", "new"); }};
  JobMachine counted(replace);
  std::vector<std::string> afterEach;
  const std::size_t calls = WithCallFault(
      {}, [&] { replace.run(counted); }, [&] { afterEach.push_back(counted.Read("C:\\file")); });
  EXPECT_EQ(calls, 6u) << "open, permissions, write, force, rename, force the folder";
  EXPECT_EQ(afterEach, (std::vector<std::string>{"old", "old", "old", "old", "new", "new"}));
  for (std::size_t at = 1; at <= calls; ++at) {
    JobMachine machine(replace);
    std::string outcome;
    WithCallFault({CallFault::Kind::Error, at, EIO}, [&] { outcome = OutcomeOf([&] { replace.run(machine); }); });
    EXPECT_NE(outcome.find("C:\\file"), std::string::npos) << at << ": " << outcome;
    EXPECT_EQ(machine.Read("C:\\file"), at < 6 ? "old" : "new");
  }
}

// What the legacy application finds after a return that did not come to its end: each file is the whole old one or the
// whole new one, and an instruction never comes before the data that it names.
TEST(SystemCallsOfAReturn, ThatAreTheLastOfThisProgramLeaveNoInstructionWithoutItsData) {
  const auto job = std::ranges::find(WritingJobs(), std::string_view("ReturnOfATag"), &Job::name);
  ASSERT_NE(job, WritingJobs().end());
  const std::string temp = "C:\\Korvane\\TQ5-VX\\Temp\\";
  JobMachine counted(*job);
  const std::string oldData = counted.Read(temp + "QPblob.tmp");
  const std::string oldInstruction = counted.Read(temp + "input.ini");
  const std::size_t calls = WithCallFault({}, [&] { job->run(counted); });
  const std::string newData = counted.Read(temp + "QPblob.tmp");
  const std::string newInstruction = counted.Read(temp + "input.ini");
  ASSERT_TRUE(oldData != newData && oldInstruction != newInstruction);
  std::map<std::string, int> found;
  for (const CallFault::Kind kind : {CallFault::Kind::KillBefore, CallFault::Kind::KillAfter}) {
    for (std::size_t at = 1; at <= calls; ++at) {
      JobMachine machine(*job);
      const pid_t child = fork();
      if (child == 0) {
        WithCallFault({kind, at, 0}, [&] { job->run(machine); });
        _exit(0);
      }
      int status = 0;
      ASSERT_EQ(waitpid(child, &status, 0), child);
      ASSERT_TRUE(WIFSIGNALED(status)) << "the call was not reached";
      const auto state = [&](const std::string& name, const std::string& before, const std::string& after) {
        const std::string path = temp + name;
        const std::string bytes = machine.Exists(path) ? machine.Read(path) : "";
        return bytes == before ? "old " : bytes == after ? "new " : "neither ";
      };
      ++found[std::string(state("input.ini", oldInstruction, newInstruction)) + "instruction, " +
              state("QPblob.tmp", oldData, newData) + "data"];
    }
  }
  const auto counts = [&](const char* which) { return found.contains(which) ? found[which] : 0; };
  const int whole =
      counts("old instruction, old data") + counts("old instruction, new data") + counts("new instruction, new data");
  EXPECT_EQ(whole, static_cast<int>(2 * calls)) << testing::PrintToString(found);
  EXPECT_EQ(found.size(), 3u) << testing::PrintToString(found);
}

}  // namespace
}  // namespace parvex::test
