#include "replay/script.h"

#include <algorithm>

#include "formats/text/letter_case.h"

namespace parvex::replay {
namespace {

// How far a step is looked for that the record has later: enough for what a command leaves out.
constexpr std::size_t kLookAhead = 1'000;
// Of a call that went another way altogether, the first say it.
constexpr std::size_t kMostDifferences = 1'000;

constexpr const char* kNothing = "nothing";

AutomationError ReadError(const Json& error) {
  try {
    return journal::ErrorFromJson(error);
  } catch (const std::exception&) {
    return MakeRuntimeError(RuntimeError::InvalidCall, "the record has an error that cannot be understood");
  }
}

bool IsLook(const std::string& op) { return op == "read" || op == "listFiles" || op == "listFolders"; }

std::string ConsumerIn(const Json& value, int depth) {
  if (!value.is_array() || depth > 8) {
    return {};
  }
  if (value.size() == 2 && value[0] == "Consumer") {
    return TextAt(value[1], "object");
  }
  for (const Json& item : value) {
    if (std::string found = ConsumerIn(item, depth + 1); !found.empty()) {
      return found;
    }
  }
  return {};
}

}  // namespace

Script::Script(const recording::RecordedCase& recorded, std::function<void(const FileChange&)> change)
    : isFinished_(TextAt(recorded.facts, "outcome") != "unfinished"), change_(std::move(change)) {
  Steps found = StepsOf(recorded);
  steps_ = std::move(found.steps);
  changedBefore_ = std::move(found.changedBefore);
  std::map<std::uint64_t, std::pair<std::string, std::string>> asked;
  for (const Json& line : recorded.steps) {
    if (TextAt(line, "kind") == "file" && IsLook(TextAt(line, "op"))) {
      asked[CountAt(line, "n")] = {TextAt(line, "op"), FoldName(TextAt(line, "path"))};
    } else if (const auto look = asked.find(CountAt(line, "n")); look != asked.end()) {
      const Json& error = Member(line, "error");
      looks_[look->second].push_back(error.is_object() ? std::optional(ReadError(error)) : std::nullopt);
      asked.erase(look);
    }
  }
  for (auto& [look, errors] : looks_) {
    std::reverse(errors.begin(), errors.end());  // the next one is the last
  }
}

const Step* Script::Take(const Json& asked) {
  if (hasEnded_) {
    throw RecordEnds();
  }
  std::size_t found = Find(asked);
  if (found == steps_.size()) {
    // A journal shows texts that are not UTF-8 with replacement characters.
    found = Find(Json::parse(asked.dump(-1, ' ', false, Json::error_handler_t::replace)));
  }
  if (found == steps_.size()) {
    if (next_ == steps_.size() && !isFinished_) {
      End();
    }
    if (next_ == steps_.size() || !ConcernSame(steps_[next_].asked, asked)) {
      NoteUnserved(asked);
      return nullptr;
    }
    Note({steps_[next_].number, NameOfStep(asked), TextOfStep(steps_[next_].asked), TextOfStep(asked)});
  } else {
    PassOver(found);
  }
  const Step& step = steps_[next_++];
  if (step.answered.is_null()) {
    End();
  }
  return &step;
}

void Script::NoteUnserved(const Json& asked) {
  if (next_ == steps_.size()) {
    Note({LastStep(), "after it, " + NameOfStep(asked), kNothing, TextOfStep(asked)});
  } else {
    const Step& step = steps_[next_];
    Note({step.number, NameOfStep(asked), NameOfStep(step.asked) + ": " + TextOfStep(step.asked), TextOfStep(asked)});
  }
}

void Script::Note(Difference difference) {
  if (differences_.size() < kMostDifferences) {
    differences_.push_back(std::move(difference));
  }
}

// The step that is asked for, from the next one on; behind the last when there is none.
std::size_t Script::Find(const Json& asked) const {
  const std::size_t last = std::min(steps_.size(), next_ + kLookAhead);
  for (std::size_t i = next_; i < last; ++i) {
    if (IsSame(steps_[i].asked, asked)) {
      return i;
    }
  }
  return steps_.size();
}

void Script::PassOver(std::size_t until) {
  for (; next_ < until; ++next_) {
    passedOver_.push_back(next_);
  }
}

bool Script::HasKind(std::string_view kind) const {
  return std::ranges::any_of(steps_, [&](const Step& step) { return TextAt(step.asked, "kind") == kind; });
}

const Step* Script::TakeEnd(std::uint64_t start) {
  if (hasEnded_) {
    throw RecordEnds();
  }
  for (std::size_t i = next_; i < steps_.size(); ++i) {
    const Json& line = steps_[i].asked;
    if (TextAt(line, "kind") == "process" && TextAt(line, "op") == "end" && CountAt(line, "start") == start) {
      PassOver(i);
      const Step& step = steps_[next_++];
      for (const FileChange& left : step.left) {
        change_(left);
      }
      Behind(step);
      return &step;
    }
  }
  if (!isFinished_) {
    PassOver(steps_.size());
    End();
  }
  return nullptr;
}

bool Script::IsNeverOver(std::uint64_t start) const {
  return std::any_of(steps_.begin(), steps_.end(), [&](const Step& step) {
    return TextAt(step.asked, "op") == "end" && CountAt(step.asked, "start") == start &&
           Member(step.asked, "exitCode").is_null();
  });
}

void Script::Behind(const Step& step) {
  MessagesRun();
  for (const FileChange& change : step.changedBehind) {
    change_(change);
  }
}

void Script::MessagesRun() {
  for (const FileChange& change : std::exchange(changedBefore_, {})) {
    change_(change);
  }
}

std::optional<AutomationError> Script::ErrorOfLook(const char* op, std::string_view path) {
  const auto known = looks_.find({op, FoldName(path)});
  if (known == looks_.end() || known->second.empty()) {
    return std::nullopt;
  }
  std::optional<AutomationError> error = std::move(known->second.back());
  known->second.pop_back();
  return error;
}

void Script::Finish(bool lenient) {
  PassOver(steps_.size());
  if (lenient) {
    return;
  }
  for (const std::size_t index : passedOver_) {
    const Step& step = steps_[index];
    Note({step.number, NameOfStep(step.asked), TextOfStep(step.asked), kNothing});
  }
  std::ranges::stable_sort(differences_, {}, &Difference::step);
}

std::uint64_t Script::LastStep() const { return next_ == 0 ? 0 : steps_[next_ - 1].number; }

std::string Script::NameOfConsumer() const {
  for (const Step& step : steps_) {
    if (std::string found = ConsumerIn(Member(step.asked, "args"), 0); !found.empty()) {
      return found;
    }
  }
  return {};
}

void Script::End() {
  hasEnded_ = true;
  throw RecordEnds();
}

AutomationError Script::ErrorOf(const Step& step) { return ReadError(Member(step.answered, "error")); }

}  // namespace parvex::replay
