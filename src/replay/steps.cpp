#include "replay/steps.h"

#include <map>
#include <string_view>
#include <utility>

#include "replay/same_text.h"

namespace parvex::replay {
namespace {

// What file operations are steps: those that change something.
constexpr std::string_view kChanges[] = {"replace", "createNew", "remove", "createFolder", "removeFolder"};

bool IsStep(const Json& line) {
  const std::string kind = TextAt(line, "kind");
  const std::string op = TextAt(line, "op");
  if (kind == "file") {
    for (const std::string_view change : kChanges) {
      if (op == change) {
        return true;
      }
    }
    return false;
  }
  if (kind == "automation") {
    return op != "release";
  }
  return kind == "lock" || kind == "router" || kind == "process" || kind == "messageBox" || kind == "ini" ||
         kind == "database";
}

bool IsForeignChange(const Json& line) {
  const std::string op = TextAt(line, "op");
  return TextAt(line, "kind") == "file" && (op == "changed" || op == "gone");
}

// The keys of a line that say what is given to the outside. The number of bytes written is none of them: what was
// written is compared when the call is over.
bool IsGiven(const std::string& key) {
  return key != "n" && key != "at" && key != "us" && key != "bytes" && key != "result" && key != "kind" && key != "op";
}

std::vector<FileChange> LeftOf(const Json& line) {
  std::vector<FileChange> left;
  for (const Json& change : Member(line, "left")) {
    left.push_back({TextAt(change, "path"), TextAt(change, "stored")});
  }
  return left;
}

}  // namespace

Steps StepsOf(const recording::RecordedCase& recorded) {
  Steps found;
  std::map<std::uint64_t, std::size_t> begun;
  for (const Json& line : recorded.steps) {
    const std::uint64_t number = CountAt(line, "n");
    if (TextAt(line, "at") == "after") {
      if (const auto before = begun.find(number); before != begun.end()) {
        found.steps[before->second].answered = line;
      }
    } else if (IsForeignChange(line)) {
      auto& changes = found.steps.empty() ? found.changedBefore : found.steps.back().changedBehind;
      changes.push_back({TextAt(line, "path"), TextAt(line, "stored")});
    } else if (IsStep(line)) {
      begun[number] = found.steps.size();
      const bool isOnce = TextAt(line, "at") == "once";
      found.steps.push_back({number, line, isOnce ? line : Json(), LeftOf(line), {}});
    }
  }
  return found;
}

bool IsSame(const Json& recorded, const Json& asked) {
  for (const auto& [key, value] : asked.items()) {
    const Json& known = Member(recorded, key.c_str());
    if (key == "bytes") {
      continue;
    }
    const bool isSame = key == "path" && known.is_string() && value.is_string()
                            ? SamePath(known.get_ref<const std::string&>(), value.get_ref<const std::string&>())
                            : SameValue(known, value);
    if (!isSame) {
      return false;
    }
  }
  return true;
}

bool ConcernSame(const Json& recorded, const Json& asked) {
  for (const char* key : {"kind", "op", "object", "member", "section", "key"}) {
    if (Member(recorded, key) != Member(asked, key)) {
      return false;
    }
  }
  return SamePath(TextAt(recorded, "path"), TextAt(asked, "path"));
}

std::string NameOfStep(const Json& line) {
  const std::string kind = TextAt(line, "kind");
  std::string name = kind == "automation" ? TextAt(line, "object") : kind == "messageBox" ? "message box" : kind;
  for (const char* key : {"op", "member", "path"}) {
    if (const std::string text = TextAt(line, key); !text.empty()) {
      name += " " + text;
    }
  }
  if (kind == "ini") {
    name += " [" + TextAt(line, "section") + "] " + TextAt(line, "key");
  }
  return name;
}

std::string TextOfStep(const Json& line) {
  if (const Json& request = Member(line, "request"); request.is_string()) {
    return request.get<std::string>();
  }
  std::string text;
  for (const auto& [key, value] : line.items()) {
    if (IsGiven(key) && key != "object" && key != "member" && key != "path" && key != "section" && key != "key" &&
        key != "left" && key != "start") {
      text +=
          (text.empty() ? "" : " ") + key + " " +
          (value.is_string() ? value.get<std::string>() : value.dump(-1, ' ', false, Json::error_handler_t::replace));
    }
  }
  return text.empty() ? NameOfStep(line) : text;
}

}  // namespace parvex::replay
