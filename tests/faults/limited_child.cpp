#include "tests/faults/limited_child.h"

#include <fcntl.h>
#include <gtest/gtest.h>
#include <sys/resource.h>
#include <sys/wait.h>
#include <unistd.h>

#include <array>
#include <new>

#include "seams/automation_error.h"

namespace parvex::test {
namespace {

#ifdef __SANITIZE_ADDRESS__
constexpr bool kSanitized = true;
#else
constexpr bool kSanitized = false;
#endif

constexpr rlim_t kMostMemory = rlim_t{256} << 20;
constexpr unsigned kMostWallSeconds = 20;

std::string AnswerOf(const std::function<std::string()>& work) {
  try {
    return work();
  } catch (const AutomationError& error) {
    return error.Description();
  } catch (const std::bad_alloc&) {
    return "out of memory";
  }
}

void LimitThisProcess() {
  alarm(kMostWallSeconds);
  if (!kSanitized) {
    const rlimit memory{kMostMemory, kMostMemory};
    setrlimit(RLIMIT_AS, &memory);
  }
}

[[noreturn]] void BeChild(int answerTo, const std::function<std::string()>& work) {
  LimitThisProcess();
  std::string_view rest;
  const std::string answer = AnswerOf(work);
  for (rest = answer; !rest.empty();) {
    const ssize_t written = write(answerTo, rest.data(), rest.size());
    if (written <= 0) {
      _exit(1);
    }
    rest.remove_prefix(static_cast<std::size_t>(written));
  }
  _exit(0);
}

double Seconds(const timeval& time) {
  return static_cast<double>(time.tv_sec) + static_cast<double>(time.tv_usec) / 1e6;
}

[[noreturn]] void BeProgram(int answerTo, const std::vector<std::string>& arguments, const std::string& outputFile) {
  LimitThisProcess();
  std::vector<char*> pointers;
  for (const std::string& argument : arguments) {
    pointers.push_back(const_cast<char*>(argument.c_str()));
  }
  pointers.push_back(nullptr);
  dup2(open(outputFile.c_str(), O_WRONLY | O_CREAT | O_TRUNC, 0600), STDOUT_FILENO);
  dup2(answerTo, STDERR_FILENO);
  execv(pointers[0], pointers.data());
  _exit(127);
}

// `be` is what the child does with the end of a pipe to which it writes its answer.
int RunChild(const std::function<void(int answerTo)>& be, ChildOutcome& outcome) {
  std::array<int, 2> ends{};
  if (pipe(ends.data()) != 0) {
    return -1;
  }
  const pid_t child = fork();
  if (child == 0) {
    close(ends[0]);
    be(ends[1]);
  }
  close(ends[1]);
  std::array<char, 4096> piece;
  for (ssize_t got = 0; (got = read(ends[0], piece.data(), piece.size())) > 0;) {
    outcome.answer.append(piece.data(), static_cast<std::size_t>(got));
  }
  close(ends[0]);
  int status = 0;
  rusage usage{};
  wait4(child, &status, 0, &usage);
  outcome.seconds = Seconds(usage.ru_utime) + Seconds(usage.ru_stime);
  return WIFEXITED(status) ? WEXITSTATUS(status) : -1;
}

}  // namespace

ChildOutcome InLimitedChild(const std::function<std::string()>& work) {
  ChildOutcome outcome;
  outcome.ended = RunChild([&](int answerTo) { BeChild(answerTo, work); }, outcome) == 0;
  return outcome;
}

ProgramOutcome InLimitedProgram(const std::vector<std::string>& arguments, const std::string& outputFile) {
  ProgramOutcome outcome;
  outcome.status = RunChild([&](int answerTo) { BeProgram(answerTo, arguments, outputFile); }, outcome);
  outcome.ended = outcome.status >= 0;
  return outcome;
}

void ExpectQuick(const ChildOutcome& outcome) {
  EXPECT_TRUE(outcome.ended) << "a crash or a hang";
  EXPECT_LT(outcome.seconds, kSanitized ? 10.0 : 3.0);
}

}  // namespace parvex::test
