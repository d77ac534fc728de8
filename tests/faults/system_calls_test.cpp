#include <errno.h>
#include <gtest/gtest.h>
#include <signal.h>
#include <sys/wait.h>
#include <unistd.h>

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
  EXPECT_EQ(calls, 4u) << "open, write, permissions, rename";
  for (std::size_t at = 1; at <= calls; ++at) {
    JobMachine machine(replace);
    std::string outcome;
    WithCallFault({CallFault::Kind::Error, at, ENOSPC}, [&] { outcome = OutcomeOf([&] { replace.run(machine); }); });
    EXPECT_NE(outcome.find("C:\\file"), std::string::npos) << at << ": " << outcome;
    EXPECT_EQ(machine.Read("C:\\file"), "old");
  }
}

}  // namespace
}  // namespace parvex::test
