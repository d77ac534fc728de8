#pragma once

#include <cstddef>
#include <functional>
#include <map>
#include <optional>
#include <string>
#include <utility>
#include <vector>

#include "replay/difference.h"
#include "replay/steps.h"
#include "seams/automation_error.h"

namespace parvex::replay {

/// Thrown where the record of a call ends that never came to its end: its host died, or still waits. It leaves the
/// call, which goes no further either; nothing but the one who carries the call out catches it.
struct RecordEnds {};

/// The record of a call, asked by a call that is done again: step by step, in the order of the record. Notes in what
/// the two differ.
class Script {
 public:
  /// `change` makes a file of the machine what the record says it became.
  Script(const recording::RecordedCase& recorded, std::function<void(const FileChange&)> change);
  Script(const Script&) = delete;
  Script& operator=(const Script&) = delete;

  /// Carries out a step that has an answer in the record: `operation` gets the recorded step, which has come back;
  /// null where the record has none, which is noted. A recorded error is raised instead. Afterwards the files become
  /// what the record says that others made of them.
  template <typename Operation>
  auto Serve(const Json& asked, Operation operation) {
    const Step* step = Take(asked);
    if (step != nullptr && step->answered.contains("error")) {
      Behind(*step);
      throw ErrorOf(*step);
    }
    auto result = operation(step);
    if (step != nullptr) {
      Behind(*step);
    }
    return result;
  }

  /// The end of a program that was started at that step: null when the record does not know of one.
  const Step* TakeEnd(std::uint64_t start);
  /// Whether the record has an end of that program in which it was still running.
  bool IsNeverOver(std::uint64_t start) const;

  /// The messages of the host run: what it changed before the first step is changed now.
  void MessagesRun();

  /// The error that the next look of this kind ("read", "listFiles", "listFolders") at this path ended in, if it did.
  std::optional<AutomationError> ErrorOfLook(const char* op, std::string_view path);

  /// The call is over: what was not asked for is noted, unless that is let pass.
  void Finish(bool lenient);

  /// Whether the record's end was reached that lies before the call's.
  bool HasEnded() const { return hasEnded_; }
  /// The step at which it was: the one that never came back, or the last.
  std::uint64_t LastStep() const;
  /// Whether the record has steps of that kind.
  bool HasKind(std::string_view kind) const;
  std::size_t Count() const { return steps_.size(); }
  std::vector<Difference>& Differences() { return differences_; }

  /// The name under which the record knows the caller as a late-bound object; empty when he was none.
  std::string NameOfConsumer() const;

 private:
  const Step* Take(const Json& asked);
  std::size_t Find(const Json& asked) const;
  void PassOver(std::size_t until);
  void Note(Difference difference);
  void NoteUnserved(const Json& asked);
  void Behind(const Step& step);
  [[noreturn]] void End();
  static AutomationError ErrorOf(const Step& step);

  bool isFinished_;
  std::vector<Step> steps_;
  std::vector<FileChange> changedBefore_;
  std::function<void(const FileChange&)> change_;
  std::size_t next_ = 0;
  bool hasEnded_ = false;
  std::vector<std::size_t> passedOver_;
  std::vector<Difference> differences_;
  std::map<std::pair<std::string, std::string>, std::vector<std::optional<AutomationError>>> looks_;
};

}  // namespace parvex::replay
