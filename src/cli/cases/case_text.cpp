#include "cli/cases/case_text.h"

#include <cstdint>
#include <unordered_set>
#include <vector>

#include "cli/cases/case_steps.h"
#include "cli/terminal/printable.h"

namespace parvex::cli {
namespace {

using recording::Json;

std::string Seconds(const Json& object, const char* key) { return SecondsOf(MicrosecondsIn(object, key)); }

std::string Steps(const recording::RecordedCase& read, const std::vector<CaseStep>& steps) {
  std::unordered_set<std::uint64_t> open;
  for (const CaseStep& step : steps) {
    if (!step.ended && step.last == nullptr) {
      open.insert(step.number);
    }
  }
  std::string text;
  for (const Json& step : read.steps) {
    const auto number = step["n"].get<std::uint64_t>();
    text += "  " + Seconds(step, "us") + " s  " + std::to_string(number) + (step["at"] == "after" ? " gave " : " ") +
            SayingOf(step);
    if (const std::string error = ErrorIn(step); !error.empty()) {
      text += "  FAILED: " + Shortened(error);
    }
    if (step["at"] == "before" && open.contains(number)) {
      text += "  NEVER CAME BACK";
    }
    text += "\n";
  }
  return text;
}

std::string Failures(const std::vector<CaseStep>& steps) {
  std::string text;
  for (const CaseStep& step : steps) {
    if (!step.failure.empty()) {
      text += "  step " + std::to_string(step.number) + ", " + SayingOf(*step.first) + ": " + Shortened(step.failure) +
              "\n";
    }
  }
  return text.empty() ? text : "\nWhat failed:\n" + text;
}

std::string Missing(const Json& facts) {
  std::string text;
  const auto missing = facts.find("missing");
  if (missing != facts.end() && missing->is_array()) {
    for (const Json& one : *missing) {
      if (one.is_object()) {
        text += "  " + Shortened(TextIn(one, "what")) + ": " + Shortened(TextIn(one, "why")) + "\n";
      }
    }
  }
  return text.empty() ? text : "Missing from the case:\n" + text;
}

}  // namespace

std::string TextOfCase(const recording::RecordedCase& read) {
  const Json& facts = read.facts;
  const std::vector<CaseStep> steps = StepsOf(read);
  const auto fact = [&](const char* key) { return Printable(TextIn(facts, key)); };
  return fact("command") + " through " + fact("entryPoint") + ": " + OutcomeOf(read) + "\n" + "Parvex " +
         fact("version") + " on " + fact("platform") + ", " + fact("bitness") + "-bit, code page " + fact("codePage") +
         ", in " + fact("program") + "\n" + "from " + fact("started") + " to " + fact("ended") + ", " +
         Seconds(facts, "microseconds") + " s\n" + Failures(steps) + "\nAsked:\n  " + Shortened(read.command) +
         "\n\nWhat happened:\n" + Steps(read, steps) + "\nAnswered:\n  " +
         (read.reply ? Shortened(*read.reply) : "no document") + "\n" + Missing(facts);
}

std::string JsonOfCase(const recording::RecordedCase& read) {
  Json all = read.facts;
  all["finished"] = read.isFinished;
  all["commandDocument"] = read.command;
  all["reply"] = read.reply ? Json(*read.reply) : Json(nullptr);
  all["steps"] = read.steps;
  all["files"] = Json::array();
  for (const recording::KeptFile& file : read.files) {
    all["files"].push_back({{"name", file.name}, {"bytes", file.bytes.size()}, {"folder", file.isFolder}});
  }
  return all.dump(2, ' ', false, Json::error_handler_t::replace) + "\n";
}

std::string LineOfCase(const recording::RecordedCase& read) {
  return Printable(TextIn(read.facts, "command")) + "  " + Seconds(read.facts, "microseconds") + " s  " +
         OutcomeOf(read);
}

std::string FilesOfCase(const recording::RecordedCase& read) {
  std::string text;
  for (const recording::KeptFile& file : read.files) {
    text += Printable(file.name) + (file.isFolder ? "/" : "  " + Counted(file.bytes.size(), "byte")) + "\n";
  }
  return text;
}

}  // namespace parvex::cli
