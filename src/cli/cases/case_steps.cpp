#include "cli/cases/case_steps.h"

#include <cstdio>
#include <string_view>
#include <unordered_map>

#include "cli/session/replies.h"
#include "cli/terminal/printable.h"
#include "formats/text/text.h"

namespace parvex::cli {
namespace {

using recording::Json;

constexpr std::size_t kLongestText = 200;

std::string FailureOf(const CaseStep& step) {
  const Json& last = step.last != nullptr ? *step.last : *step.first;
  if (const std::string error = ErrorIn(last); !error.empty()) {
    return error;
  }
  const std::string kind = TextIn(*step.first, "kind");
  if (kind == "router" && last.contains("success") && last["success"] == false) {
    return "the router refused it";
  }
  if (kind == "process" && TextIn(*step.first, "op") == "end") {
    const std::string exitCode = TextIn(last, "exitCode");
    return exitCode.empty() ? "still ran when it was let go" : exitCode == "0" ? "" : "exit code " + exitCode;
  }
  return {};
}

bool IsProgramStart(const CaseStep& step) {
  return TextIn(*step.first, "kind") == "process" && TextIn(*step.first, "op") == "start";
}

// The start of the program whose end this step is; null for other steps.
CaseStep* StartOf(const CaseStep& step, std::vector<CaseStep>& steps,
                  const std::unordered_map<std::uint64_t, std::size_t>& places) {
  const auto start = step.first->find("start");
  if (TextIn(*step.first, "kind") != "process" || start == step.first->end() || !start->is_number_unsigned()) {
    return nullptr;
  }
  const auto place = places.find(start->get<std::uint64_t>());
  return place != places.end() && IsProgramStart(steps[place->second]) ? &steps[place->second] : nullptr;
}

}  // namespace

std::string TextIn(const Json& object, const char* key) {
  const auto member = object.find(key);
  if (member == object.end() || member->is_null()) {
    return {};
  }
  return member->is_string() ? member->get<std::string>()
                             : member->dump(-1, ' ', false, Json::error_handler_t::replace);
}

std::string Shortened(const std::string& text) {
  const std::string_view first = FirstUnits(text, kLongestText);
  return Printable(first) + (first.size() < text.size() ? "..." : "");
}

std::string SecondsOf(const std::optional<std::uint64_t>& microseconds) {
  if (!microseconds) {
    return "?";
  }
  char text[32];
  std::snprintf(text, sizeof text, "%.3f", static_cast<double>(*microseconds) / 1e6);
  return text;
}

std::optional<std::uint64_t> MicrosecondsIn(const Json& object, const char* key) {
  const auto member = object.find(key);
  const bool isThere = member != object.end() && member->is_number_unsigned();
  return isThere ? std::optional(member->get<std::uint64_t>()) : std::nullopt;
}

std::string ErrorIn(const Json& object) {
  const auto error = object.find("error");
  if (error == object.end() || !error->is_object()) {
    return {};
  }
  const std::string number = TextIn(*error, "number");
  return (number.empty() ? "" : "error " + number + ", ") + TextIn(*error, "source") + ": " +
         TextIn(*error, "description");
}

std::string SayingOf(const Json& line) {
  std::string said = Printable(TextIn(line, "kind"));
  for (const auto& [key, value] : line.items()) {
    if (key == "n" || key == "at" || key == "us" || key == "kind" || key == "error" || value == "" || value.empty()) {
      continue;
    }
    said += (key == "op" ? " " : " " + Printable(key) + " ") + Shortened(TextIn(line, key.c_str()));
  }
  return said;
}

std::vector<CaseStep> StepsOf(const recording::RecordedCase& read) {
  std::vector<CaseStep> steps;
  std::unordered_map<std::uint64_t, std::size_t> places;
  for (const Json& line : read.steps) {
    const auto number = line["n"].get<std::uint64_t>();
    const auto [place, isNew] = places.try_emplace(number, steps.size());
    const auto now = MicrosecondsIn(line, "us");
    if (isNew) {
      const auto ended = line["at"] == "before" ? std::nullopt : now;
      steps.push_back({.number = number, .first = &line, .last = nullptr, .begun = now, .ended = ended, .failure = {}});
      continue;
    }
    CaseStep& step = steps[place->second];
    step.last = &line;
    step.ended = now;
  }
  std::vector<bool> hasEnded(steps.size());
  for (CaseStep& step : steps) {
    step.failure = step.last == nullptr && (*step.first)["at"] == "before" ? "never came back" : FailureOf(step);
    if (CaseStep* start = StartOf(step, steps, places)) {
      step.begun = start->begun;
      hasEnded[static_cast<std::size_t>(start - steps.data())] = true;
    }
  }
  for (std::size_t i = 0; i < steps.size(); ++i) {
    if (steps[i].failure.empty() && IsProgramStart(steps[i]) && !hasEnded[i]) {
      steps[i].failure = "the program's end was not seen";
    }
  }
  return steps;
}

std::string OutcomeOf(const recording::RecordedCase& read) {
  const std::string outcome = TextIn(read.facts, "outcome");
  const std::string error = ErrorIn(read.facts);
  const auto failure = outcome == "failure" && read.reply ? FailureIn(*read.reply) : std::nullopt;
  return Printable(outcome) + (!error.empty() ? ": " + Shortened(error) : failure ? ": " + Shortened(*failure) : "");
}

}  // namespace parvex::cli
