#include "replay/json_members.h"

namespace parvex::replay {

const Json& Member(const Json& object, const char* key) {
  static const Json kNothing;
  if (!object.is_object()) {
    return kNothing;
  }
  const auto member = object.find(key);
  return member == object.end() ? kNothing : *member;
}

std::string TextAt(const Json& object, const char* key) {
  const Json& text = Member(object, key);
  return text.is_string() ? text.get<std::string>() : std::string();
}

bool FlagAt(const Json& object, const char* key) {
  const Json& flag = Member(object, key);
  return flag.is_boolean() && flag.get<bool>();
}

std::uint64_t CountAt(const Json& object, const char* key) {
  const Json& count = Member(object, key);
  return count.is_number_unsigned() ? count.get<std::uint64_t>() : 0;
}

}  // namespace parvex::replay
