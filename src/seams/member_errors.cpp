#include "seams/member_errors.h"

namespace parvex::automation {
namespace {

AutomationError Refused(std::uint32_t number, std::string_view object, std::string_view member,
                        const std::string& why) {
  return AutomationError(number, kErrorSource, std::string(object) + "." + std::string(member) + ": " + why);
}

}  // namespace

AutomationError NoSuchMember(std::string_view object, std::string_view member) {
  return Refused(kNoSuchMember, object, member, "the object has no such member");
}

AutomationError WrongArgumentCount(std::string_view object, std::string_view member, std::size_t given) {
  return Refused(kWrongArgumentCount, object, member,
                 "it does not take " + std::to_string(given) + (given == 1 ? " argument" : " arguments"));
}

AutomationError WrongArgumentType(std::string_view object, std::string_view member, std::optional<std::size_t> number) {
  const std::string which = number ? "argument " + std::to_string(*number) : std::string("an argument");
  return Refused(0x800A0000u + static_cast<std::uint32_t>(RuntimeError::TypeMismatch), object, member,
                 which + " has another type than is wanted");
}

}  // namespace parvex::automation
