#pragma once

#include <functional>
#include <string>
#include <vector>

namespace parvex::test {

/// How `work` went in a child process of this one.
struct ChildOutcome {
  bool ended = false;  ///< it came to its end: no crash, no hang
  std::string answer;  ///< what it gave
  double seconds = 0;  ///< of processor time
};

/// Runs `work` in a child that may take 256 MiB of memory (as much as it likes under the address sanitizer, which needs
/// terabytes of address space) and is ended after 20 seconds. An exception is an answer: the description of an
/// AutomationError, "out of memory" for a std::bad_alloc.
ChildOutcome InLimitedChild(const std::function<std::string()>& work);

/// How a program went under the same limits, with its standard error.
struct ProgramOutcome : ChildOutcome {
  int status = -1;  ///< exit status; -1 when it was ended by a signal
};

/// Runs a program, whose path is the first argument. Its standard output goes to a file; `answer` is its standard
/// error.
ProgramOutcome InLimitedProgram(const std::vector<std::string>& arguments, const std::string& outputFile);

/// Fails the test unless the work came to its end in a few seconds of processor time: on a machine that does nothing
/// else the largest takes less than one, which a busy one, or a slow disk, makes twice as many. What is guarded against
/// took minutes.
void ExpectQuick(const ChildOutcome& outcome);

}  // namespace parvex::test
