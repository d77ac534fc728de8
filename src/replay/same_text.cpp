#include "replay/same_text.h"

#include <string>

#include "formats/text/letter_case.h"
#include "formats/text/machine_folder_places.h"
#include "journal/xml_difference.h"
#include "seams/xml.h"

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
  if (one == other || !journal::FirstXmlDifference(one, other)) {
    return true;
  }
  // Several elements after each other, as some members take them.
  const auto inOne = [](std::string_view text) { return std::string("<_>").append(text).append("</_>"); };
  return one.starts_with('<') && other.starts_with('<') && !journal::FirstXmlDifference(inOne(one), inOne(other));
}

bool SameDocument(std::string_view one, std::string_view other) {
  if (SameText(one, other)) {
    return true;
  }
  const auto markup = [](std::string_view bytes) { return xml::Document::Load(bytes).Xml(); };
  const std::string first = markup(one);
  return !first.empty() && !journal::FirstXmlDifference(first, markup(other));
}

bool SameError(const Json& one, const Json& other, bool isOtherParser) {
  if (!isOtherParser || SameValue(one, other)) {
    return SameValue(one, other);
  }
  const auto withoutWords = [](Json error) {
    const auto description = error.find("description");
    if (description != error.end() && description->is_string()) {
      const auto& text = description->get_ref<const std::string&>();
      *description = text.substr(0, text.find(": line "));
    }
    return error;
  };
  return SameValue(withoutWords(one), withoutWords(other));
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
