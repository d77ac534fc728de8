#include "replay/same_text.h"

#include "formats/text/letter_case.h"
#include "formats/text/machine_folder_places.h"
#include "journal/xml_difference.h"

namespace parvex::replay {

using journal::Json;

namespace {

bool SameMembers(const Json& one, const Json& other) {
  for (const auto& [key, value] : one.items()) {
    const auto member = other.find(key);
    if (member == other.end() || !SameValue(value, *member)) {
      return false;
    }
  }
  return true;
}

bool SameItems(const Json& one, const Json& other) {
  for (std::size_t i = 0; i < one.size(); ++i) {
    if (!SameValue(one[i], other[i])) {
      return false;
    }
  }
  return true;
}

}  // namespace

bool SameText(std::string_view one, std::string_view other) {
  return one == other || !journal::FirstXmlDifference(one, other);
}

bool SameValue(const Json& one, const Json& other) {
  if (one.is_string() && other.is_string()) {
    return SameText(one.get_ref<const std::string&>(), other.get_ref<const std::string&>());
  }
  if (one.is_array() && other.is_array()) {
    return one.size() == other.size() && SameItems(one, other);
  }
  if (one.is_object() && other.is_object()) {
    return one.size() == other.size() && SameMembers(one, other);
  }
  return one == other;
}

bool SamePath(std::string_view one, std::string_view other) {
  if (one == other) {
    return true;
  }
  const auto first = PlaceInMachineFolder(one);
  const auto second = PlaceInMachineFolder(other);
  return first && second && FoldName(*first) == FoldName(*second);
}

}  // namespace parvex::replay
