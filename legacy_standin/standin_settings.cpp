#include "legacy_standin/standin_settings.h"

#include <fstream>
#include <iterator>
#include <nlohmann/json.hpp>

#include "platform/automation_error.h"

namespace parvex::standin {
namespace {

using nlohmann::json;

[[noreturn]] void Refuse(std::string_view fileName, const std::string& what) {
  throw MakeRuntimeError(RuntimeError::InvalidCall, std::string(fileName) + ": " + what);
}

/// One object of the file, whose members are taken by name; what nobody took is a misspelt key.
class Members {
 public:
  Members(std::string_view fileName, std::string path, const json& object)
      : fileName_(fileName), path_(std::move(path)), rest_(object) {
    if (!object.is_object()) {
      Refuse(fileName_, (path_.empty() ? "the content" : path_) + " is not an object but " + object.dump());
    }
  }

  /// The member's value, null when it is not there.
  json Take(const std::string& key) {
    const auto found = rest_.find(key);
    if (found == rest_.end()) {
      return nullptr;
    }
    json value = *found;
    rest_.erase(found);
    return value;
  }

  bool TakeFlag(const std::string& key) {
    const json value = Take(key);
    if (!value.is_null() && !value.is_boolean()) {
      RefuseValue(key, "true or false", value);
    }
    return value.is_boolean() && value.get<bool>();
  }

  std::optional<int> TakeExitCode(const std::string& key) {
    const json value = Take(key);
    if (value.is_null()) {
      return std::nullopt;
    }
    if (!value.is_number_integer() || value < 0 || value > 255) {
      RefuseValue(key, "a whole number from 0 to 255", value);
    }
    return value.get<int>();
  }

  std::vector<std::string> TakeTexts(const std::string& key) {
    const json value = Take(key);
    std::vector<std::string> texts;
    if (value.is_null()) {
      return texts;
    }
    if (!value.is_array()) {
      RefuseValue(key, "a list of texts", value);
    }
    for (const json& item : value) {
      if (!item.is_string()) {
        RefuseValue(key, "a list of texts", value);
      }
      texts.push_back(item.get<std::string>());
    }
    return texts;
  }

  Members TakeObject(const std::string& key) {
    const json value = Take(key);
    return Members(fileName_, NameOf(key), value.is_null() ? json::object() : value);
  }

  void Finish() const {
    if (!rest_.empty()) {
      Refuse(fileName_, "unknown key " + NameOf(rest_.begin().key()));
    }
  }

 private:
  std::string NameOf(const std::string& key) const { return path_.empty() ? key : path_ + "." + key; }

  [[noreturn]] void RefuseValue(const std::string& key, const std::string& wanted, const json& value) const {
    Refuse(fileName_, NameOf(key) + " has to be " + wanted + ", not " + value.dump());
  }

  std::string_view fileName_;
  std::string path_;
  json rest_;
};

json ParseJson(std::string_view text, std::string_view fileName) {
  try {
    return json::parse(text);
  } catch (const json::parse_error& error) {
    Refuse(fileName, error.what());
  }
}

}  // namespace

StandinSettings ParseStandinSettings(std::string_view text, std::string_view fileName) {
  StandinSettings settings;
  const json content = ParseJson(text, fileName);
  Members all(fileName, "", content);

  Members workflow = all.TakeObject("workflow");
  settings.workflow.cancel = workflow.TakeFlag("cancel");
  settings.workflow.exitCode = workflow.TakeExitCode("exitCode");
  settings.workflow.writeNothing = workflow.TakeFlag("writeNothing");
  workflow.Finish();

  Members router = all.TakeObject("router");
  settings.router.refuse = router.TakeTexts("refuse");
  router.Finish();

  all.TakeObject("builder");
  all.TakeObject("reportServer");
  all.Finish();
  return settings;
}

StandinSettings ReadStandinSettings(const std::filesystem::path& machineFolder) {
  const std::filesystem::path path = machineFolder / "standin.json";
  if (!std::filesystem::exists(path)) {
    return {};
  }
  std::ifstream file(path, std::ios::binary);
  if (!file || !std::filesystem::is_regular_file(path)) {
    throw MakeRuntimeError(RuntimeError::PathFileAccess, "cannot read " + path.string());
  }
  return ParseStandinSettings(std::string(std::istreambuf_iterator<char>(file), {}), path.string());
}

}  // namespace parvex::standin
