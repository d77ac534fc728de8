#include "tests/faults/limited_child.h"

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

[[noreturn]] void BeChild(int answerTo, const std::function<std::string()>& work) {
  alarm(kMostWallSeconds);
  if (!kSanitized) {
    const rlimit memory{kMostMemory, kMostMemory};
    setrlimit(RLIMIT_AS, &memory);
  }
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

}  // namespace

ChildOutcome InLimitedChild(const std::function<std::string()>& work) {
  std::array<int, 2> ends{};
  if (pipe(ends.data()) != 0) {
    return {};
  }
  const pid_t child = fork();
  if (child == 0) {
    close(ends[0]);
    BeChild(ends[1], work);
  }
  close(ends[1]);
  ChildOutcome outcome;
  std::array<char, 4096> piece;
  for (ssize_t got = 0; (got = read(ends[0], piece.data(), piece.size())) > 0;) {
    outcome.answer.append(piece.data(), static_cast<std::size_t>(got));
  }
  close(ends[0]);
  int status = 0;
  rusage usage{};
  wait4(child, &status, 0, &usage);
  outcome.ended = WIFEXITED(status) && WEXITSTATUS(status) == 0;
  outcome.seconds = Seconds(usage.ru_utime) + Seconds(usage.ru_stime);
  return outcome;
}

void ExpectQuick(const ChildOutcome& outcome) {
  EXPECT_TRUE(outcome.ended) << "a crash or a hang";
  EXPECT_LT(outcome.seconds, kSanitized ? 10.0 : 1.0);
}

}  // namespace parvex::test
