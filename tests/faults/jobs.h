#pragma once

#include <functional>
#include <map>
#include <set>
#include <string>
#include <vector>

#include "recording/recorder.h"
#include "tests/support/fake_platform.h"

namespace parvex::test {

/// A piece of work that changes files of a machine.
struct Job {
  const char* name;
  std::function<void(FakeMachine&)> prepare;
  std::function<void(FakeMachine&)> run;
};

/// The ways on which files are written: an export, a return, changes of a project and of options, single files.
const std::vector<Job>& WritingJobs();

/// A piece of work that gives something back.
struct AnsweringJob {
  const char* name;
  std::function<void(FakeMachine&)> prepare;
  std::function<std::string(FakeMachine&)> run;
};

/// Jobs of which every allocation is made to fail: an export, a change of a project, an edit of a tag, and documents.
const std::vector<AnsweringJob>& AllocatingJobs();

/// The export of the jobs, recorded where a recorder is given: its reply. As the first call of a thread.
void PrepareExport(FakeMachine& machine);
std::string ExportedText(FakeMachine& machine, recording::Recorder* recorder);

inline void PrintTo(const Job& job, std::ostream* out) { *out << job.name; }
inline void PrintTo(const AnsweringJob& job, std::ostream* out) { *out << job.name; }

/// A machine for one run of a job, ready for it.
struct JobMachine : FakeMachine {
  explicit JobMachine(const Job& job) { job.prepare(*this); }
  explicit JobMachine(const AnsweringJob& job) { job.prepare(*this); }
};

/// What files may hold: by path in the machine's folder, the contents of a file at any moment of an undisturbed run,
/// "absent" among them as no value.
class AllowedFiles {
 public:
  /// Takes in what the machine holds now.
  void Learn(const FakeMachine& machine);
  /// What is not allowed on the machine, one a line: a file that nobody knows, and contents that the file never had.
  /// New files that never took their name are passed over when `killed`.
  std::string Violations(const FakeMachine& machine, bool killed = false) const;

 private:
  using Contents = std::map<std::string, std::string>;
  static Contents ContentsOf(const FakeMachine& machine);

  std::vector<Contents> learned_;
};

/// How a job ended: an empty text, or the error's description; "out of memory" for a failed allocation. Any other
/// exception leaves.
std::string OutcomeOf(const std::function<void()>& work);

}  // namespace parvex::test
