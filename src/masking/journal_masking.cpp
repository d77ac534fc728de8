#include "masking/journal_masking.h"

#include <algorithm>
#include <array>
#include <map>
#include <string_view>

#include "masking/places.h"
#include "recording/case_layout.h"

namespace parvex::masking {
namespace {

using recording::Json;

template <std::size_t Count>
bool IsAmong(std::string_view key, const std::array<std::string_view, Count>& keys) {
  return std::find(keys.begin(), keys.end(), key) != keys.end();
}

// Values that the format fixes.
bool IsFixed(std::string_view key) {
  constexpr std::array<std::string_view, 12> kFixed = {"kind",    "op",         "at",      "member",
                                                       "icon",    "product",    "version", "platform",
                                                       "outcome", "entryPoint", "classId", "interfaceId"};
  return IsAmong(key, kFixed);
}

bool IsPath(std::string_view key) {
  constexpr std::array<std::string_view, 5> kPaths = {"path", "program", "fileName", "binPath", "dataRoot"};
  return IsAmong(key, kPaths);
}

bool IsMember(std::string_view key) { return key == "stored" || key == "namesOnly"; }

std::string TextIn(const Json& object, const char* key) {
  const auto member = object.find(key);
  return member != object.end() && member->is_string() ? member->get<std::string>() : std::string();
}

// What the builder is told: "\\GROUP\project", "\\\GROUP\tag\id\project\project's id", "\\:project".
std::string MaskCommandLine(Masker& masker, const std::string& line) {
  if (line.starts_with("\\\\:")) {
    return "\\\\:" + masker.Text(std::string_view(line).substr(3), Place::Name);
  }
  const bool isOfTag = line.starts_with("\\\\\\");
  std::string masked;
  std::size_t part = 0;  // behind the backslashes in front
  std::size_t from = line.find_first_not_of('\\');
  if (from == std::string::npos) {
    return line;
  }
  masked = line.substr(0, from);
  while (from <= line.size()) {
    const std::size_t end = isOfTag || part == 0 ? std::min(line.find('\\', from), line.size()) : line.size();
    const std::string text = line.substr(from, end - from);
    const bool isName = part == 1 || (isOfTag && part >= 3);
    masked += masker.Text(text, isName ? Place::Name : Place::Other);
    if (end < line.size()) {
      masked.push_back('\\');
    }
    from = end + 1;
    ++part;
  }
  return masked;
}

Place PlaceOfArgument(std::string_view member, std::size_t index) {
  if (member == "AddTag" || member == "AddReport") {
    return index == 4 ? Place::Name : Place::Other;
  }
  return member == "Project" || member == "ProjectID" ? Place::Name : Place::Other;
}

class Lines {
 public:
  explicit Lines(Masker& masker) : masker_(masker) {}

  Json Masked(const Json& value, const std::string& key, Place place = Place::Other) {
    if (value.is_string()) {
      const std::string& text = value.get_ref<const std::string&>();
      if (IsFixed(key)) {
        return value;
      }
      if (IsMember(key)) {
        return MaskMember(masker_, text);
      }
      return masker_.Text(text, IsPath(key) ? Place::Path : place);
    }
    if (value.is_array()) {
      Json masked = Json::array();
      for (const Json& one : value) {
        masked.push_back(Masked(one, key, place));
      }
      return masked;
    }
    if (value.is_object()) {
      return MaskedObject(value);
    }
    return value;
  }

  Json MaskedObject(const Json& object) {
    Json masked = Json::object();
    for (const auto& [key, value] : object.items()) {
      if (key == "tagNames") {
        masked[key] = TagNames(value);
      } else if (key == "row" && value.is_object()) {
        masked[key] = Row(value);
      } else {
        masked[key] = Masked(value, key);
      }
    }
    return masked;
  }

  // Pairs of group and name below "taken".
  Json TagNames(const Json& names) {
    Json masked = names;
    if (names.is_object() && names.contains("taken") && names["taken"].is_array()) {
      for (Json& pair : masked["taken"]) {
        if (pair.is_array() && pair.size() == 2 && pair[1].is_string()) {
          pair[1] = masker_.Text(pair[1].get<std::string>(), Place::Name);
        }
      }
    }
    return masked;
  }

  Json Row(const Json& row) {
    Json masked = Json::object();
    for (const auto& [column, value] : row.items()) {
      const Place place = PlaceNamed(column == "sValue" ? TextIn(row, "sKey") : column);
      masked[column] = Masked(value, "", place);
    }
    return masked;
  }

  Json Arguments(const Json& arguments, const std::string& member) {
    Json masked = Json::array();
    for (std::size_t i = 0; i < arguments.size(); ++i) {
      const Json& argument = arguments[i];
      masked.push_back(argument.is_array() ? Items(argument) : Masked(argument, "", PlaceOfArgument(member, i)));
    }
    return masked;
  }

  // A keyed collection, as pairs.
  Json Items(const Json& items) {
    Json masked = Json::array();
    for (const Json& item : items) {
      if (!item.is_array() || item.size() != 2 || !item[0].is_string()) {
        masked.push_back(Masked(item, ""));
        continue;
      }
      const auto key = item[0].get<std::string>();
      const bool isLine = key == "Command Line" && item[1].is_string();
      masked.push_back({key, isLine ? Json(MaskCommandLine(masker_, item[1].get<std::string>()))
                                    : Masked(item[1], "", PlaceNamed(key))});
    }
    return masked;
  }

  // Pairs of an argument's number and its new value.
  Json ChangedArguments(const Json& changed, const std::string& member) {
    Json masked = Json::array();
    for (const Json& pair : changed) {
      if (pair.is_array() && pair.size() == 2 && pair[0].is_number_integer()) {
        masked.push_back({pair[0], Masked(pair[1], "", PlaceOfArgument(member, pair[0].get<std::size_t>()))});
      } else {
        masked.push_back(Masked(pair, ""));
      }
    }
    return masked;
  }

 private:
  Masker& masker_;
};

struct Begun {
  std::string path;
  std::string member;
};

}  // namespace

std::string MaskMember(Masker& masker, const std::string& member) {
  std::size_t from = 0;
  if (member.starts_with(recording::kMachine)) {
    from = recording::kMachine.size();
  } else if (member.starts_with(recording::kAfter)) {
    from = std::min(member.find('/', recording::kAfter.size()), member.size() - 1) + 1;
  }
  return member.substr(0, from) + masker.Path(std::string_view(member).substr(from));
}

Json MaskFacts(Masker& masker, const Json& facts) { return Lines(masker).MaskedObject(facts); }

std::vector<Json> MaskSteps(Masker& masker, const std::vector<Json>& steps, const LengthNow& lengthNow) {
  Lines lines(masker);
  std::map<std::uint64_t, Begun> begun;
  std::vector<Json> masked;
  for (const Json& step : steps) {
    Begun& begin = begun[step["n"].get<std::uint64_t>()];
    if (step["at"] != "after") {
      begin = {TextIn(step, "path"), TextIn(step, "member")};
    }
    Json line = lines.MaskedObject(step);
    if (step.contains("args") && step["args"].is_array()) {
      line["args"] = lines.Arguments(step["args"], begin.member);
    }
    if (step.contains("changed") && step["changed"].is_array()) {
      line["changed"] = lines.ChangedArguments(step["changed"], begin.member);
    }
    if (TextIn(step, "kind") == "ini" && step.contains("value")) {
      line["value"] = lines.Masked(step["value"], "", PlaceNamed(TextIn(step, "key")));
      line["key"] = step["key"];
    }
    if (step.contains("bytes") && step["bytes"].is_number_unsigned()) {
      if (const auto length = lengthNow(begin.path, step["bytes"].get<std::uint64_t>())) {
        line["bytes"] = *length;
      }
    }
    if (step["at"] != "before") {
      begun.erase(step["n"].get<std::uint64_t>());
    }
    masked.push_back(std::move(line));
  }
  return masked;
}

}  // namespace parvex::masking
