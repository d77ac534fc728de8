#include "legacy_standin/installation/json_members.h"

#include <stdexcept>

#include "seams/automation_error.h"

namespace parvex::standin {

Json ParseJson(std::string_view text, std::string_view fileName) {
  const auto refuse = [&](const std::string& reason) {
    throw MakeRuntimeError(RuntimeError::InvalidCall, std::string(fileName) + ": " + reason);
  };
  if (text.size() > kLongestJsonFile) {
    refuse("it has more than " + std::to_string(kLongestJsonFile) + " bytes");
  }
  std::size_t values = kMostJsonFileValues;
  try {
    return ParseBoundedJson(text, values);
  } catch (const std::invalid_argument& problem) {
    refuse(problem.what());
  } catch (const Json::exception& error) {
    refuse(error.what());
  }
  return {};
}

JsonMembers::JsonMembers(std::string fileName, std::string place, const Json& object)
    : fileName_(std::move(fileName)), place_(std::move(place)), rest_(object) {
  if (!object.is_object()) {
    Refuse(place_.empty() ? "the content" : place_, "an object", object);
  }
}

Json JsonMembers::Take(const std::string& key) {
  const auto found = rest_.find(key);
  if (found == rest_.end()) {
    return nullptr;
  }
  Json value = std::move(*found);
  rest_.erase(found);
  return value;
}

std::string JsonMembers::TakeText(const std::string& key) {
  const Json value = Take(key);
  if (!value.is_null() && !value.is_string()) {
    Refuse(PlaceOf(key), "a text", value);
  }
  return value.is_null() ? std::string() : value.get<std::string>();
}

bool JsonMembers::TakeFlag(const std::string& key, bool fallback) {
  const Json value = Take(key);
  if (!value.is_null() && !value.is_boolean()) {
    Refuse(PlaceOf(key), "true or false", value);
  }
  return value.is_null() ? fallback : value.get<bool>();
}

Json JsonMembers::TakeList(const std::string& key) {
  Json value = Take(key);
  if (!value.is_null() && !value.is_array()) {
    Refuse(PlaceOf(key), "a list", value);
  }
  return value.is_null() ? Json::array() : value;
}

JsonMembers JsonMembers::TakeObject(const std::string& key) {
  const Json value = Take(key);
  return JsonMembers(fileName_, PlaceOf(key), value.is_null() ? Json::object() : value);
}

void JsonMembers::Finish() const {
  if (!rest_.empty()) {
    const auto first = rest_.begin();
    Refuse(PlaceOf(first.key()), "a known key", first.value());
  }
}

std::string JsonMembers::PlaceOf(const std::string& key) const { return place_.empty() ? key : place_ + "." + key; }

void JsonMembers::Refuse(const std::string& place, const std::string& wanted, const Json& value) const {
  throw MakeRuntimeError(RuntimeError::InvalidCall,
                         fileName_ + ": " + place + " has to be " + wanted + ", not " + value.dump());
}

}  // namespace parvex::standin
