#include <gtest/gtest.h>

#include "tests/faults/fault_injection.h"
#include "tests/faults/jobs.h"

// Every allocation of a job fails, once or with all behind it: the job ends with an error or as if nothing had
// happened, with the reply of an undisturbed run; it gives back what it took (the leak checker looks), and each file is
// as it was or as an undisturbed run makes it. What libxml2 and zlib allocate for themselves fails alike.

namespace parvex::test {
namespace {

class Allocations : public testing::TestWithParam<AnsweringJob> {
 protected:
  Allocations() {
    GetParam().run(*std::make_unique<JobMachine>(GetParam()));  // what is made once in a process is made now
    JobMachine machine(GetParam());
    allowed_.Learn(machine);
    WithCallFault(
        {}, [&] { reply_ = GetParam().run(machine); }, [&] { allowed_.Learn(machine); });
  }

  // Lets each allocation fail in turn, until the job asks for no more.
  void FailEach(bool once) {
    std::size_t failures = 0;
    for (std::size_t at = 1;; ++at) {
      JobMachine machine(GetParam());
      std::string outcome;
      std::string reply;
      const std::size_t asked =
          WithAllocationFault({at, once}, [&] { outcome = OutcomeOf([&] { reply = GetParam().run(machine); }); });
      failures += outcome == "out of memory" ? 1 : 0;
      ASSERT_EQ(allowed_.Violations(machine), "") << "allocation " << at;
      if (outcome.empty()) {
        ASSERT_EQ(reply, reply_) << "allocation " << at;
      }
      if (asked < at) {
        EXPECT_EQ(outcome, "") << "undisturbed";
        RecordProperty("allocations", static_cast<int>(asked));
        break;
      }
    }
    EXPECT_GT(failures, 50u);
  }

  AllowedFiles allowed_;
  std::string reply_;
};

TEST_P(Allocations, ThatFailOnceEndCleanly) { FailEach(true); }

TEST_P(Allocations, ThatFailFromOneOnEndCleanly) { FailEach(false); }

INSTANTIATE_TEST_SUITE_P(Of, Allocations, testing::ValuesIn(AllocatingJobs()),
                         [](const testing::TestParamInfo<AnsweringJob>& info) { return std::string(info.param.name); });

}  // namespace
}  // namespace parvex::test
