#include "cli/cases/case_text.h"

#include <cstdint>
#include <cstdio>
#include <map>
#include <string_view>

#include "cli/terminal/printable.h"
#include "formats/text/text.h"

namespace parvex::cli {
namespace {

using recording::Json;

constexpr std::size_t kLongestText = 200;

std::string TextIn(const Json& object, const char* key) {
  const auto member = object.find(key);
  if (member == object.end() || member->is_null()) {
    return {};
  }
  return member->is_string() ? member->get<std::string>()
                             : member->dump(-1, ' ', false, Json::error_handler_t::replace);
}

// A text as far as it fits into a line.
std::string Short(const std::string& text) {
  const std::string_view first = FirstUnits(text, kLongestText);
  return Printable(first) + (first.size() < text.size() ? "..." : "");
}

std::string Seconds(const Json& object, const char* key) {
  const auto member = object.find(key);
  if (member == object.end() || !member->is_number_unsigned()) {
    return "?";
  }
  char text[32];
  std::snprintf(text, sizeof text, "%.3f", static_cast<double>(member->get<std::uint64_t>()) / 1e6);
  return text;
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

// What a step is about: everything it says but what every step does.
std::string Saying(const Json& step) {
  std::string said = TextIn(step, "kind");
  for (const auto& [key, value] : step.items()) {
    if (key == "n" || key == "at" || key == "us" || key == "kind" || key == "error" || value.is_null() ||
        (value.is_array() && value.empty())) {
      continue;
    }
    said += (key == "op" ? " " : " " + key + " ") + Short(TextIn(step, key.c_str()));
  }
  return said;
}

// Steps that did not come back, by number.
std::map<std::uint64_t, bool> OpenSteps(const std::vector<Json>& steps) {
  std::map<std::uint64_t, bool> open;
  for (const Json& step : steps) {
    const auto number = step["n"].get<std::uint64_t>();
    if (step["at"] == "before") {
      open[number] = true;
    } else {
      open.erase(number);
    }
  }
  return open;
}

std::string Steps(const recording::RecordedCase& read) {
  std::string text;
  const std::map<std::uint64_t, bool> open = OpenSteps(read.steps);
  for (const Json& step : read.steps) {
    const std::string number = std::to_string(step["n"].get<std::uint64_t>());
    text += "  " + Seconds(step, "us") + " s  " + number + (step["at"] == "after" ? " gave " : " ") + Saying(step);
    if (const std::string error = ErrorIn(step); !error.empty()) {
      text += "  FAILED: " + Short(error);
    }
    if (step["at"] == "before" && open.contains(step["n"].get<std::uint64_t>())) {
      text += "  NEVER CAME BACK";
    }
    text += "\n";
  }
  return text;
}

std::string Outcome(const recording::RecordedCase& read) {
  const std::string outcome = TextIn(read.facts, "outcome");
  const std::string error = ErrorIn(read.facts);
  return Printable(outcome) + (error.empty() ? "" : ": " + Short(error));
}

std::string Missing(const Json& facts) {
  std::string text;
  const auto missing = facts.find("missing");
  if (missing != facts.end() && missing->is_array()) {
    for (const Json& one : *missing) {
      if (one.is_object()) {
        text += "  " + Short(TextIn(one, "what")) + ": " + Short(TextIn(one, "why")) + "\n";
      }
    }
  }
  return text.empty() ? text : "Missing from the case:\n" + text;
}

}  // namespace

std::string TextOfCase(const recording::RecordedCase& read) {
  const Json& facts = read.facts;
  const auto fact = [&](const char* key) { return Printable(TextIn(facts, key)); };
  return fact("command") + " through " + fact("entryPoint") + ": " + Outcome(read) + "\n" + "Parvex " +
         fact("version") + " on " + fact("platform") + ", " + fact("bitness") + "-bit, code page " + fact("codePage") +
         ", in " + fact("program") + "\n" + "from " + fact("started") + " to " + fact("ended") + ", " +
         Seconds(facts, "microseconds") + " s\n\nAsked:\n  " + Short(read.command) + "\n\nWhat happened:\n" +
         Steps(read) + "\nAnswered:\n  " + (read.reply ? Short(*read.reply) : "no document") + "\n" + Missing(facts);
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
  return Printable(TextIn(read.facts, "command")) + "  " + Seconds(read.facts, "microseconds") + " s  " + Outcome(read);
}

std::string FilesOfCase(const recording::RecordedCase& read) {
  std::string text;
  for (const recording::KeptFile& file : read.files) {
    text += Printable(file.name) + (file.isFolder ? "/" : "  " + Counted(file.bytes.size(), "byte")) + "\n";
  }
  return text;
}

}  // namespace parvex::cli
