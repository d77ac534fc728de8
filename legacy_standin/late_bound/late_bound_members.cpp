#include "legacy_standin/late_bound/late_bound_members.h"

#include "seams/automation_error.h"
#include "seams/member_errors.h"

namespace parvex::standin {
namespace {

constexpr std::uint32_t kToldToFail = kObjectErrorBase + 1u;

std::string PathOf(const automation::Object& object, std::string_view member) {
  return object.Name() + "." + std::string(member);
}

}  // namespace

void RefuseMember(const automation::Object& object, std::string_view member) {
  throw automation::NoSuchMember(object.Name(), member);
}

void RefuseValue(const automation::Object& object, std::string_view member, const std::string& reason) {
  throw MakeRuntimeError(RuntimeError::InvalidCall, PathOf(object, member) + ": " + reason);
}

void FailWhereTold(std::string_view failAt, const automation::Object& object, std::string_view member) {
  if (failAt == member) {
    throw AutomationError(kToldToFail, object.Name(), PathOf(object, member) + ": told to fail");
  }
}

void RequireCount(const automation::Object& object, std::string_view member,
                  std::span<const automation::Argument> arguments, std::size_t count) {
  if (arguments.size() != count) {
    throw automation::WrongArgumentCount(object.Name(), member, arguments.size());
  }
}

std::vector<std::string> TextArguments(const automation::Object& object, std::string_view member,
                                       std::span<const automation::Argument> arguments, std::size_t count,
                                       Passed passed) {
  RequireCount(object, member, arguments, count);
  std::vector<std::string> texts;
  for (const automation::Argument& argument : arguments) {
    const auto* text = std::get_if<std::string>(&argument.value);
    if (text == nullptr || (passed == Passed::ByReference && !argument.byReference)) {
      throw automation::WrongArgumentType(object.Name(), member, texts.size() + 1);
    }
    texts.push_back(*text);
  }
  return texts;
}

}  // namespace parvex::standin
